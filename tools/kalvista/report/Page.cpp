#include "report/Page.h"

#include <algorithm>
#include <cctype>
#include <kainjow/mustache.hpp>

#include "camera/Calibration.h"
#include "report/PageTemplate.h"
#include "report/Picture.h"

namespace tool {
namespace {

using kainjow::mustache::data;

// Browsers treat control characters in ways of their own.
std::string shownText(std::string text) {
  constexpr const char* kReplacement = "\xEF\xBF\xBD";
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isControl =
        std::iscntrl(static_cast<unsigned char>(text[at])) != 0 && text[at] != '\t';
    if (isControl) text.replace(at, 1, kReplacement);
  }
  return text;
}

// Null is what a template takes for absent.
data dataOf(const Json& value) {
  if (value.is_object()) {
    data members;
    for (const auto& [name, member] : value.items()) members.set(name, dataOf(member));
    return members;
  }
  if (value.is_array()) {
    data items(data::type::list);
    for (const Json& item : value) items.push_back(dataOf(item));
    return items;
  }
  if (value.is_string()) return shownText(value);
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_null()) return false;
  return value.is_number_float() ? numberText(value) : value.dump();
}

std::string statusOf(const Json& checks) {
  std::string worst = "ok";
  for (const Json& check : checks) {
    if (check["status"] == "fail") return "fail";
    if (check["status"] == "warn") worst = "warn";
  }
  return worst;
}

Json verdictOn(const Json& checks) {
  const std::string kind = statusOf(checks);
  Json reasons = Json::array();
  for (const Json& check : checks) {
    if (kind != "ok" && check["status"] == kind) reasons.push_back(check);
  }
  const std::string text = kind == "ok" ? "Ready: all checks passed."
                           : kind == "warn"
                               ? "Ready, with " + countText(reasons.size(), "warning") + "."
                               : "Not ready: " + countText(reasons.size(), "check") + " failed.";
  return {{"kind", kind}, {"text", text}, {"hasReasons", !reasons.empty()}, {"reasons", reasons}};
}

void addToCalibration(const Json& report, Json* calibration) {
  for (Json& file : (*calibration)["files"]) file["isWhole"] = file["state"] == "present";
  (*calibration)["pictures"] = picturesOf(report);
  (*calibration)["hasPictures"] = !(*calibration)["optics"].empty();
  Json ranges = Json::array();
  for (const OpticsRow& row : opticsRows((*calibration)["optics"])) {
    ranges.push_back({{"fov", row.fov},
                      {"text", row.text},
                      {"range", row.range},
                      {"extended", row.extended},
                      {"decimals", row.decimals},
                      {"framerates", row.framerates}});
  }
  (*calibration)["ranges"] = ranges;
}

void addToConfiguration(Json* configuration) {
  const std::size_t count = (*configuration)["findings"].size();
  (*configuration)["summary"] =
      count == 0 ? "nothing is wrong with it." : countText(count, "finding") + ".";
  for (Json& line : (*configuration)["lines"]) {
    for (Json& finding : line["findings"]) finding["kind"] = finding["fault"] ? "fail" : "warn";
  }
}

}  // namespace

std::string pageOf(const Json& report) {
  Json view = report;
  view["title"] = report["serial"].is_null() ? "No camera" : "Camera " + report["serial"].dump();
  view["verdict"] = verdictOn(report["checks"]);
  view["hasCameras"] = !report["cameras"].empty();
  if (!view["calibration"].is_null()) addToCalibration(report, &view["calibration"]);
  if (!view["configuration"].is_null()) addToConfiguration(&view["configuration"]);
  return kainjow::mustache::mustache(kPageTemplate).render(dataOf(view));
}

}  // namespace tool
