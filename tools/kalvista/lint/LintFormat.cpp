#include "lint/LintFormat.h"

#include <algorithm>

namespace tool {
namespace {

constexpr Range kNoOrYes{0, 1};

std::vector<ElementRule> deviceConfigurationElements() {
  constexpr auto root = "imager";
  return {{"serial", root, ValueKind::DecimalInteger, kFromZero},
          {"videoformatindex", root, ValueKind::Integer, {-1, kFromZero.max}},
          {"fov", root, ValueKind::Integer, kFromZero},
          {"optics_text", root, ValueKind::Text},
          {"temperature", root},
          {"min", "temperature", ValueKind::Integer, kAnyInteger},
          {"max", "temperature", ValueKind::Integer, kAnyInteger},
          {"framerate", root, ValueKind::Number, {kAboveZero, kUnsigned16.max}},
          {"calipath", root, ValueKind::Text},
          {"formatspath", root, ValueKind::Text},
          {"bispectral", root, ValueKind::Integer, kNoOrYes},
          {"average", root, ValueKind::Integer, kNoOrYes},
          {"autoflag", root},
          {"enable", "autoflag", ValueKind::Integer, kNoOrYes},
          {"mininterval", "autoflag", ValueKind::Number, {0}},
          {"maxinterval", "autoflag", ValueKind::Number, {0}},
          {"pif_in_mode", root, ValueKind::Integer, kNoOrYes},
          {"pifmode", root, ValueKind::Integer, kNoOrYes, false, "pif_in_mode"},
          {"pif_out_mode", root, ValueKind::Integer, kNoOrYes},
          {"pif_out_voltage", root, ValueKind::Integer, kFromZero},
          {"tchipmode", root, ValueKind::Integer, {0, 2}},
          {"tchipfixedvalue", root, ValueKind::Number},
          {"focus", root, ValueKind::Number, {0, 100}}};
}

std::vector<ElementRule> calibrationElements() {
  constexpr bool repeated = true;
  std::vector<ElementRule> elements = {
      {"Main", "CaliData"},
      {"Temperature", "CaliData"},
      {"Optics", "Temperature"},
      {"OpticsDef", "Optics", ValueKind::Elements, {}, repeated},
      {"TempRanges", "OpticsDef"},
      {"TemperatureRange", "TempRanges", ValueKind::Elements, {}, repeated},
      {"Framerates", "TemperatureRange"},
      {"Framerate", "Framerates", ValueKind::Elements, {}, repeated},
      {"FR", "Framerate", ValueKind::Integer16, {1, kUnsigned16.max}},
      {"TableParams", "TemperatureRange"},
      {"FOV", "OpticsDef", ValueKind::Integer, {1, kAnyInteger.max}},
      {"SerNo", "OpticsDef", ValueKind::Integer, kFromZero},
      {"Text", "OpticsDef", ValueKind::NamePart},
      {"SamplePointCali", "OpticsDef", ValueKind::Truth},
      {"AddedOffset", "Main", ValueKind::Integer16, {-32768, 32767}}};
  for (const char* name : {"TecA", "TecB", "TecC", "TecD", "FlagCycles", "FlagCycles_Ignore"}) {
    elements.push_back({name, "Main", ValueKind::Integer16, kUnsigned16});
  }
  for (const char* name :
       {"TempTEC_Step", "TempTECOffset", "TempTECGain", "TempFlagOffset", "TempChipFactor",
        "TempChipOffset", "TempBoxOffset", "TempOpticsOffset", "TempProcOffset", "TempHouseOffset",
        "PifInOffset", "PifInGain", "PifOutOffset", "PifOutGain", "BindTempChipToTempFlagOffset",
        "AlphaLowTemp", "AlphaLowFactor"}) {
    elements.push_back({name, "Main", ValueKind::Number});
  }
  for (const char* name : {"TempLo", "TempHi", "TempLoExt", "TempHiExt"}) {
    elements.push_back({name, "TemperatureRange", ValueKind::Number});
  }
  for (const char* name : {"Decimal", "Fid", "Skim"}) {
    elements.push_back({name, "TemperatureRange", ValueKind::Integer16, kUnsigned16});
  }
  for (const char* name : {"Normalize", "T1", "T3"}) {
    elements.push_back({name, "TableParams", ValueKind::Integer, kAnyInteger});
  }
  for (const char* name : {"E1", "E3"}) {
    elements.push_back({name, "TableParams", ValueKind::Integer16, kUnsigned16});
  }
  elements.push_back({"Lambda", "TableParams", ValueKind::Number});
  return elements;
}

}  // namespace

const ElementRule* Format::find(std::string_view name) const {
  const auto found = std::find_if(elements.begin(), elements.end(),
                                  [name](const ElementRule& rule) { return rule.name == name; });
  return found != elements.end() ? &*found : nullptr;
}

const Format& deviceConfigurationFormat() {
  static const Format format = {
      "imager",
      deviceConfigurationElements(),
      {{"min", "max", false, std::nullopt}, {"mininterval", "maxinterval", true, 0}},
      {}};
  return format;
}

const Format& calibrationFormat() {
  constexpr double notGiven = -100;
  static const Format format = {"CaliData",
                                calibrationElements(),
                                {{"TempLo", "TempHi", false, std::nullopt},
                                 {"TempLoExt", "TempLo", true, notGiven},
                                 {"TempHi", "TempHiExt", true, notGiven}},
                                {"Main", "Temperature", "Optics"}};
  return format;
}

}  // namespace tool
