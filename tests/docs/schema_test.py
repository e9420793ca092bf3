"""Holds what the tool answers with --json, good and bad, against docs/schema."""
import json
import pathlib
import subprocess
import sys

try:
    from jsonschema import Draft202012Validator, RefResolver
except ImportError:
    print("skipped: the Python package jsonschema is missing (Debian: python3-jsonschema)")
    sys.exit(77)

# The sample camera is attached, its calibration is not here yet, and 99 is a camera of nobody.
COMMANDS = """
version | cameras | serial | serial 99 | doctor | check 12345678 | optics 12345678 | download 12345678
download 99 | copy 12345678 /media/usb | copy 99 /media/usb | copy 99 nowhere | check 99 --explain
check 12345678 --explain | optics 12345678 | config 12345678 | config 12345678 -o new.xml
config 12345678 -o imager.xml | config 12345678 --fov 7 | check 12345678 --config imager.xml
params imager.xml | params nowhere.xml | lint imager.xml | lint downloadlinks.xml | lint nowhere.xml
setup | setup --all | doctor 12345678 | seal 12345678 | seal 99
mirror . --serials serials --from /media/usb | mirror . --serials nowhere
report | report 99 --config nowhere.xml | report 12345678 --config imager.xml -o report.html
"""


def closed(schema):
    """The same schema, in which a member that it does not describe is a mistake."""
    if isinstance(schema, dict):
        schema = {key: closed(value) for key, value in schema.items()}
        if "properties" in schema and schema.get("type") == "object":
            schema["additionalProperties"] = False
    return [closed(part) for part in schema] if isinstance(schema, list) else schema


schemas = {path.name: closed(json.loads(path.read_text()))
           for path in pathlib.Path(sys.argv[1]).glob("*.json")}
resolver = RefResolver("", {}, store=schemas)
unseen = set(schemas) - {"common.json"}
failures = 0
for command in COMMANDS.replace("\n", " | ").strip(" |").split(" | "):
    answer = subprocess.run(["kalvista", *command.split(), "--json"], stdout=subprocess.PIPE)
    document = json.loads(answer.stdout)
    name = document["command"] + ".json"
    unseen.discard(name)
    for error in Draft202012Validator(schemas[name], resolver=resolver).iter_errors(document):
        failures += 1
        print(f"kalvista {command}: {error.json_path}: {error.message}")
    if (document["problem"] is None) != (answer.returncode == 0):
        failures += 1
        print(f"kalvista {command}: exit status {answer.returncode}, problem {document['problem']}")
print(f"{failures} failures; commands never asked: {sorted(unseen)}")
sys.exit(bool(failures or unseen))
