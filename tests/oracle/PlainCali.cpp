#include "PlainCali.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "PlainXml.h"

namespace oracle {
namespace {

/// Writes down a model, field by field. With a document each field first takes its initial value
/// and then what the document says; without one it stands as it is.
class Ledger {
 public:
  Ledger() = default;
  explicit Ledger(const std::string& file) {
    if (xml_.open(file.c_str(), "CaliData") && xml_.hasRoot()) loading_ = true;
  }

  LoadedCali load() {
    present_ = xml_.setNode() && loading_;
    xml_.setNode("Main");
    initial_ = true;
    MainSection main;
    mainSection(main);
    xml_.setNode();
    xml_.setNode("Temperature");
    xml_.setNode("Optics");
    const int count = loading_ ? xml_.getNodeCount("OpticsDef") : 1;
    line("optics", count);
    for (int i = 0; i < count; ++i) loadOptics(i);
    return {loading_ ? 0 : 0x80070005, lines_};
  }

  std::string describe(const ConfigCali& cali) {
    mainSection(*cali.mainSection);
    line("optics", cali.opticsList->count);
    for (int i = 0; i < cali.opticsList->count; ++i) {
      OpticsDef& optics = *cali.opticsList->items[i];
      opticsHead(optics, 0);
      text("Text", optics.Text);
      line("SamplePointCali", optics.SamplePointCali ? 1 : 0);
      line("ranges", optics.rangeCount);
      for (int j = 0; j < optics.rangeCount; ++j) range(*optics.ranges[j], 0.0F, 0.0F);
    }
    return lines_;
  }

 private:
  // %a writes a number bit for bit: -0 and the sign of NaN included.
  void line(const char* field, double value) {
    char number[40];
    std::snprintf(number, sizeof number, " %a\n", value);
    lines_ += field + std::string(number);
  }
  void text(const char* field, const char* value) {
    lines_ += std::string(field) + (value == nullptr ? " null" : " = " + std::string(value)) + "\n";
  }
  template <typename T>
  void integer(const char* key, T& field, int initial = 0) {
    if (initial_) {
      if (present_) xml_.getInt(key, &initial);
      field = static_cast<T>(initial);
    }
    line(key, static_cast<double>(field));
  }
  template <typename T>
  void number(const char* key, T& field, float initial = 0.0F) {
    if (initial_) {
      if (present_) xml_.getFloat(key, &initial);
      field = initial;
    }
    line(key, static_cast<double>(field));
  }
  std::unique_ptr<char[]> string(const char* key) {
    char* value = nullptr;
    if (present_) xml_.getString(key, &value);
    return std::unique_ptr<char[]>(value);
  }

  void mainSection(MainSection& main) {
    integer("TecA", main.TecA, 3400);
    integer("TecB", main.TecB, 400);
    integer("TecC", main.TecC, 400);
    integer("TecD", main.TecD, 120);
    number("TempTEC_Step", main.TempTEC_Step, 5.0F);
    number("TempTECOffset", main.TempTECOffset, 294.5F);
    number("TempTECGain", main.TempTECGain, 13.055F);
    number("TempFlagOffset", main.TempFlagOffset);
    number("TempChipFactor", main.TempChipFactor, 1.0F);
    number("TempChipOffset", main.TempChipOffset);
    number("TempBoxOffset", main.TempBoxOffset);
    number("TempOpticsOffset", main.TempOpticsOffset);
    number("TempProcOffset", main.TempProcOffset);
    number("TempHouseOffset", main.TempHouseOffset);
    number("PifInOffset", main.PifInOffset);
    number("PifInGain", main.PifInGain, 1.0F);
    number("PifOutOffset", main.PifOutOffset);
    number("PifOutGain", main.PifOutGain, 1.0F);
    integer("AddedOffset", main.AddedOffset);
    number("BindTempChipToTempFlagOffset", main.BindTempChipToTempFlagOffset, 0.8F);
    integer("FlagCycles", main.FlagCycles, 10);
    integer("FlagCycles_Ignore", main.FlagCycles_Ignore, 2);
    number("AlphaLowTemp", main.AlphaLowTemp, 23.0F);
    number("AlphaLowFactor", main.AlphaLowFactor, 1.0F);
  }

  void opticsHead(OpticsDef& optics, int fov) {
    integer("FOV", optics.FOV, fov);
    integer("SerNo", optics.SerNo);
  }

  void loadOptics(int index) {
    const bool entered = present_ = loading_ && xml_.setNode("OpticsDef", index);
    OpticsDef optics;
    opticsHead(optics, loading_ ? 0 : 30);
    text("Text", string("Text").get());
    const auto flag = string("SamplePointCali");
    std::string lower = flag ? flag.get() : "";
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    line("SamplePointCali", lower == "true" ? 1 : 0);
    loadRanges(entered && xml_.setNode("TempRanges"));
    if (entered) xml_.resetNode();
  }

  void loadRanges(bool listed) {
    const float initial[3][2] = {{-20.0F, 100.0F}, {0.0F, 250.0F}, {150.0F, 900.0F}};
    const int count = listed ? xml_.getNodeCount("TemperatureRange") : 3;
    line("ranges", count);
    for (int j = 0; j < count; ++j) {
      const bool entered = present_ = listed && xml_.setNode("TemperatureRange", j);
      TableParams table;
      TemperatureRange record;
      record.tableParams = &table;
      range(record, listed ? 0.0F : initial[j][0], listed ? 0.0F : initial[j][1]);
      if (entered) xml_.resetNode();
    }
    if (listed) xml_.resetNode();
  }

  void range(TemperatureRange& range, float low, float high) {
    const bool entered = present_;
    integer("Fid", range.Fid);
    integer("Skim", range.Skim);
    number("TempLo", range.TempLo, low);
    number("TempHi", range.TempHi, high);
    number("TempLoExt", range.TempLoExt, -100.0F);
    number("TempHiExt", range.TempHiExt, -100.0F);
    framerates(range);
    present_ = entered;
    integer("Decimal", range.Decimal, 1);
    const bool hasTable = present_ = entered && xml_.setNode("TableParams");
    integer("Normalize", range.tableParams->Normalize);
    integer("T1", range.tableParams->T1);
    integer("T3", range.tableParams->T3);
    integer("E1", range.tableParams->E1);
    integer("E3", range.tableParams->E3);
    number("Lambda", range.tableParams->Lambda);
    if (hasTable) xml_.resetNode();
  }

  void framerates(const TemperatureRange& range) {
    const bool listed = present_ && xml_.setNode("Framerates");
    const int count = listed ? xml_.getNodeCount("Framerate") : range.framerateCount;
    line(listed || range.framerates != nullptr ? "framerates" : "no framerates", count);
    for (int k = 0; k < count; ++k) {
      const bool entered = present_ = listed && xml_.setNode("Framerate", k);
      FR rate = listed ? FR{0} : *range.framerates[k];
      integer("FR", rate);
      if (entered) xml_.resetNode();
    }
    if (listed) xml_.resetNode();
  }

  PlainXml xml_;
  std::string lines_;
  bool loading_ = false;  // the document could be opened
  bool initial_ = false;  // fields take initial values
  bool present_ = false;  // the element whose keys are read could be entered
};

}  // namespace

LoadedCali loadPlainly(const std::string& file) { return Ledger(file).load(); }

std::string describe(const ConfigCali& cali) { return Ledger().describe(cali); }

}  // namespace oracle
