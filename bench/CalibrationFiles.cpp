#include "CalibrationFiles.h"

#include <cstdint>
#include <string_view>

#include "Files.h"

namespace bench {
namespace {

constexpr int kNoLimit = 1 << 30;

struct Interval {
  std::string_view low, high;
};
constexpr Interval kRanges[] = {{"-20", "100"}, {"0", "250"}, {"150", "900"}};

// Writes elements line by line, as an editor would lay them out.
class ElementWriter {
 public:
  explicit ElementWriter(bool comments) : comments_(comments) {}

  void open(std::string_view name) {
    indent();
    tag("<", name);
    endLine(name);
    ++depth_;
  }

  void close(std::string_view name) {
    --depth_;
    indent();
    tag("</", name);
    text_ += '\n';
  }

  void value(std::string_view name, std::string_view value) {
    indent();
    tag("<", name);
    text_ += value;
    tag("</", name);
    endLine(name);
  }

  void line(std::string_view text) { (text_ += text) += '\n'; }
  std::size_t size() const { return text_.size(); }
  std::string take() { return std::move(text_); }

 private:
  void indent() { text_.append(2 * depth_, ' '); }
  void tag(std::string_view start, std::string_view name) { ((text_ += start) += name) += '>'; }

  void endLine(std::string_view name) {
    if (comments_) ((text_ += "  <!-- ") += name) += ": set at the test bench -->";
    text_ += '\n';
  }

  bool comments_;
  std::size_t depth_ = 0;
  std::string text_;
};

class CalibrationWriter {
 public:
  explicit CalibrationWriter(Kind kind) : kind_(kind), xml_(kind == Kind::Commented) {}

  std::string write(int records, std::size_t size) {
    xml_.line(R"(<?xml version="1.0" encoding="utf-8"?>)");
    xml_.open("CaliData");
    main();
    xml_.open("Temperature");
    xml_.open("Optics");
    if (kind_ == Kind::OneRange) {
      oneRange(records, size);
    } else {
      for (int i = 0; i < records && xml_.size() < size; ++i) optics(i);
    }
    xml_.close("Optics");
    xml_.close("Temperature");
    xml_.close("CaliData");
    return xml_.take();
  }

 private:
  // A linear congruential generator, written out so that every C++ library gives the same numbers.
  int number(int low, int high) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return low + static_cast<int>((state_ >> 33U) % static_cast<std::uint64_t>(high - low + 1));
  }

  std::string integer(int low, int high) { return std::to_string(number(low, high)); }

  std::string decimal(int low, int high, int digits) {
    std::string text = integer(low, high) + '.';
    for (int i = 0; i < digits; ++i) text += static_cast<char>('0' + number(0, 9));
    return text;
  }

  void main() {
    xml_.open("Main");
    for (const char* name : {"TecA", "TecB", "TecC", "TecD"}) xml_.value(name, integer(100, 3400));
    if (kind_ != Kind::Sparse) mainConstants();
    xml_.close("Main");
  }

  void mainConstants() {
    xml_.value("TempTEC_Step", "5");
    xml_.value("TempTECOffset", decimal(290, 299, 1));
    xml_.value("TempTECGain", decimal(12, 14, 3));
    for (const char* name : {"TempFlagOffset", "TempChipFactor", "TempChipOffset", "TempBoxOffset",
                             "TempOpticsOffset", "TempProcOffset", "TempHouseOffset"}) {
      xml_.value(name, decimal(-3, 3, 2));
    }
    for (const char* name : {"PifInOffset", "PifInGain", "PifOutOffset", "PifOutGain"}) {
      xml_.value(name, decimal(0, 2, 1));
    }
    xml_.value("AddedOffset", integer(-40, 40));
    xml_.value("BindTempChipToTempFlagOffset", decimal(0, 0, 2));
    xml_.value("FlagCycles", "10");
    xml_.value("FlagCycles_Ignore", "2");
    xml_.value("AlphaLowTemp", decimal(20, 25, 1));
    xml_.value("AlphaLowFactor", decimal(0, 1, 3));
  }

  void optics(int index) {
    xml_.open("OpticsDef");
    xml_.value("FOV", integer(6, 90));
    xml_.value("SerNo", std::to_string(10001 + index));
    if (kind_ != Kind::Sparse) {
      xml_.value("Text", kind_ == Kind::Distinct ? "T" + std::to_string(index)
                         : index % 2 == 0        ? "T"
                                                 : "wide");
      xml_.value("SamplePointCali", index % 2 == 0 ? "false" : "True");
    }
    xml_.open("TempRanges");
    for (const Interval& interval : kRanges) range(interval);
    xml_.close("TempRanges");
    xml_.close("OpticsDef");
  }

  void range(const Interval& interval) {
    xml_.open("TemperatureRange");
    if (kind_ == Kind::Sparse) {
      ends(interval);
    } else {
      beforeFramerates(interval);
      xml_.open("Framerates");
      framerates();
      xml_.close("Framerates");
      afterFramerates();
    }
    xml_.close("TemperatureRange");
  }

  void ends(const Interval& interval) {
    xml_.value("TempLo", interval.low);
    xml_.value("TempHi", interval.high);
  }

  void beforeFramerates(const Interval& interval) {
    xml_.value("Fid", integer(0, 9000));
    xml_.value("Skim", integer(0, 4000));
    ends(interval);
    xml_.value("TempLoExt", decimal(-60, 140, 1));
    xml_.value("TempHiExt", decimal(150, 1500, 1));
  }

  void framerates() {
    for (const char* framerate : {"27", "32", "80"}) {
      xml_.open("Framerate");
      xml_.value("FR", framerate);
      xml_.close("Framerate");
    }
  }

  void afterFramerates() {
    xml_.value("Decimal", integer(1, 2));
    xml_.open("TableParams");
    xml_.value("Normalize", integer(0, 1));
    xml_.value("T1", integer(-50, 300));
    xml_.value("T3", integer(300, 1500));
    xml_.value("E1", integer(0, 20000));
    xml_.value("E3", integer(20000, 65535));
    xml_.value("Lambda", decimal(7, 14, 3));
    xml_.close("TableParams");
  }

  void oneRange(int groups, std::size_t size) {
    for (const char* name : {"OpticsDef", "TempRanges", "TemperatureRange"}) xml_.open(name);
    beforeFramerates(kRanges[0]);
    xml_.open("Framerates");
    for (int i = 0; i < groups && xml_.size() < size; ++i) framerates();
    xml_.close("Framerates");
    afterFramerates();
    for (const char* name : {"TemperatureRange", "TempRanges", "OpticsDef"}) xml_.close(name);
  }

  Kind kind_;
  ElementWriter xml_;
  std::uint64_t state_ = 2026;
};

}  // namespace

std::string calibrationText(Kind kind, int records) {
  return CalibrationWriter(kind).write(records, std::string::npos);
}

std::string calibrationTextOfSize(Kind kind, std::size_t size) {
  return CalibrationWriter(kind).write(kNoLimit, size);
}

CalibrationFile calibrationFile(const std::filesystem::path& folder, int serial) {
  const auto path = folder / ("Cali-" + std::to_string(serial) + ".xml");
  return {path.string(), folder.string(), serial, std::filesystem::file_size(path)};
}

CalibrationFile writeCalibration(const std::filesystem::path& folder, int serial,
                                 const std::string& text) {
  writeFile(folder / ("Cali-" + std::to_string(serial) + ".xml"), text);
  return calibrationFile(folder, serial);
}

std::string siblingsText(int count) {
  ElementWriter xml(false);
  xml.open("Items");
  for (int i = 0; i < count; ++i) xml.value("Item", std::to_string(i));
  xml.close("Items");
  return xml.take();
}

}  // namespace bench
