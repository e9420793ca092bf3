"""Opens the page of "kalvista report" in a browser, on the machine of docs/: what it requests, whether its
bars lie where the numbers say, whether it can be read, and whether texts stay texts."""
import json
import os
import pathlib
import pwd
import re
import subprocess
import sys

os.environ["no_proxy"] = "127.0.0.1,localhost"
try:
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
except ImportError:
    print("skipped: the Python package selenium is missing (Debian: python3-selenium)")
    sys.exit(77)
for program in ("/usr/bin/chromium", "/usr/bin/chromedriver"):
    if not os.access(program, os.X_OK):
        print(f"skipped: {program} is missing (Debian: chromium chromium-driver)")
        sys.exit(77)

OTHERS = "jdoes, xjdoe, of root, in /home/, /srv/home/ada, /srv//home/ada, "
HOSTILE = """"'></td></li><script>throw 1</script><img src="http://127.0.0.1:9/x">{{title}}&amp;"""
BARS = """return [...document.querySelectorAll("figure svg")].map(svg => ({
  ticks: [...svg.querySelectorAll("text.tick")].map(t => +t.textContent),
  places: [...svg.querySelectorAll("line")].map(l => l.getBoundingClientRect().x),
  bars: [...svg.querySelectorAll("rect")].map(r => [r.getAttribute("class"), r.getBoundingClientRect().left,
                                                    r.getBoundingClientRect().right])}))"""
FAINT = """
const numbers = colour => colour.match(/[\\d.]+/g).map(Number);
const light = c => numbers(c).slice(0, 3).map(v => (v /= 255) <= .04045 ? v / 12.92 : ((v + .055) / 1.055) ** 2.4)
  .reduce((sum, v, i) => sum + v * [.2126, .7152, .0722][i], 0);
const back = e => { for (; e; e = e.parentElement) { const c = getComputedStyle(e).backgroundColor;
  if ((numbers(c)[3] ?? 1) > 0) return c; } return "rgb(255, 255, 255)"; };
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT), faint = []; let seen = 0;
for (let node; node = walker.nextNode();) {
  const e = node.parentElement;
  if (!node.textContent.trim() || !e.getClientRects().length) continue;
  const style = getComputedStyle(e), svg = e instanceof SVGElement;
  const [a, b] = [light(svg ? style.fill : style.color), light(back(e))];
  const ratio = (Math.max(a, b) + .05) / (Math.min(a, b) + .05); seen++;
  if (ratio < 4.5) faint.push(node.textContent.trim() + " " + ratio);
}
return seen > 50 ? faint : ["only " + seen + " texts"];"""
failures = []


def expect(holds, text):
    if not holds:
        failures.append(text)
        print("FAILED:", text)


def report(*arguments):
    subprocess.run(["kalvista", "report", *arguments], check=True, stdout=subprocess.DEVNULL)
    return pathlib.Path(arguments[arguments.index("-o") + 1]).read_text()


def start_browser():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def requests_of(browser):
    for entry in browser.get_log("performance"):
        message = json.loads(entry["message"])["message"]
        if message["method"] == "Network.requestWillBeSent":
            yield message["params"]["request"]["url"]


def look_at(browser, page, scheme, width):
    where = f"{page}, {scheme}, {width} px"
    address = pathlib.Path(page).resolve().as_uri()
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                            {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                            {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
    browser.get(address)
    others = [url for url in requests_of(browser) if url != address]
    expect(not others, f"{where}: requests {others}")
    console = browser.get_log("browser")
    expect(not console, f"{where}: console {console}")
    wide = browser.execute_script("return document.documentElement.scrollWidth")
    expect(wide <= width, f"{where}: {wide} pixels wide")
    faint = browser.execute_script(FAINT)
    expect(not faint, f"{where}: faint texts {faint[:5]}")


def intervals(optics):
    for a_range in optics["ranges"]:
        extended = a_range["extended"]
        if extended:
            yield "extended", extended["min"], extended["max"]
        yield "calibrated", a_range["min"], a_range["max"]


def compare_bars(browser, optics):
    drawn = browser.execute_script(BARS)
    expect(len(drawn) == len(optics) == 3, f"{len(drawn)} pictures")
    for picture, one in zip(drawn, optics):
        ticks, places = picture["ticks"], picture["places"]
        scale = (places[-1] - places[0]) / (ticks[-1] - ticks[0])
        wanted = [[kind, *(places[0] + (end - ticks[0]) * scale for end in ends)] for kind, *ends in intervals(one)]
        bars = [bar for bar in picture["bars"] if bar[0] != "configured"]
        near = len(bars) == len(wanted) and all(
            bar[0] == want[0] and max(abs(bar[1] - want[1]), abs(bar[2] - want[2])) < 1
            for bar, want in zip(bars, wanted))
        expect(near, f"optics {one['fov']}: bars {bars}, but wanted {wanted}")
    chosen = [bar for picture in drawn for bar in picture["bars"] if bar[0] == "configured"]
    expect(chosen == [["configured", *drawn[2]["bars"][3][1:]]], f"configured {chosen}")


subprocess.run("kalvista setup --from /media/usb -v error && kalvista config 12345678 --fov 60 --range=0:250 "
               "--framerate 27 -o chosen.xml", shell=True, check=True, stdout=subprocess.DEVNULL)
os.environ |= {"USER": "jdoe", "LOGNAME": "ada.l", "SUDO_USER": "mail"}
configuration = pathlib.Path("chosen.xml")
configuration.write_text(configuration.read_text().replace(
    "</imager>", "  <!-- jdoe changed it on /media/jdoe/stick, from /home/otto.x/old.xml, ada.l from " + pwd.getpwnam("mail").pw_dir + "/a; " + OTHERS + "said jdoe. -->\n</imager>"))
chosen = report("--config", "chosen.xml", "-o", "chosen.html")
data = json.loads(report("--config", "chosen.xml", "-o", "chosen.json"))
expect(re.search(r"Ready: all checks passed\.</p>\s*</div>", chosen) and data["healthy"], "the sample camera is ready")
expect("/mnt/home" not in chosen and "~/chosen.xml" in chosen, "the home directory is left out")
expect(not re.search(r"\bjdoe\b|\botto\b", chosen + json.dumps(data)), "names are left out")
expect("USER changed it on /media/USER/stick, from ~/old.xml, USER from ~/a; " + OTHERS + "said USER. " in chosen, "only names are left out")
full = report("--config", "chosen.xml", "--full", "-o", "full.json")
expect("/mnt/home/chosen.xml" in full and json.loads(full)["machine"]["user"], "--full tells all")
expect(data["machine"]["user"] is None, "nothing tells the user")

pathlib.Path("/mnt/camera/product").write_text(HOSTILE + "\n")
cali = pathlib.Path("/usr/share/libkalvista/cali/Cali-12345678.xml")
cali.write_text(re.sub(">macro<", lambda _: f">{HOSTILE}<", cali.read_text()))
pathlib.Path("hostile.xml").write_text(
    configuration.read_text().replace("<fov>60", f"<!-- {HOSTILE} -->\n  <fov>{HOSTILE}"))
report("12345678", "--config", "hostile.xml", "-o", "hostile.html")

browser = start_browser()
try:
    for page in ("chosen.html", "hostile.html"):
        for scheme in ("light", "dark"):
            for width in (360, 1400):
                look_at(browser, page, scheme, width)
                if page == "chosen.html":
                    compare_bars(browser, data["calibration"]["optics"])
    foreign = browser.execute_script("return document.querySelectorAll('script, img').length")
    shown = browser.execute_script("return document.body.textContent").count(HOSTILE)
    expect(foreign == 0 and shown >= 4, f"hostile texts: {foreign} elements, shown {shown} times")
finally:
    browser.quit()
print(f"{len(failures)} failures")
sys.exit(bool(failures))
