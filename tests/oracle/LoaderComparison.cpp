// The calibration loader written down step by step on the plain reader.
#include <kalvista/Cali.h>
#include <strings.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <sstream>
#include <tuple>
#include <type_traits>

#include "Oracle.h"
#include "PlainXml.h"

using namespace std::string_literals;

namespace oracle {
namespace {

// Writes down records, one "field value" a line. Inside an element that is present, each field
// first takes what the document says.
class Ledger {
 public:
  std::string load(const std::string& file) {
    present_ = xml_.open(file.c_str(), "CaliData") && xml_.hasRoot();
    if (!present_) return describe(0x80070005, ConfigCali());
    write("status", 0);
    MainSection main;
    xml_.setNode();
    xml_.setNode("Main");
    mainSection(main);
    xml_.setNode();
    xml_.setNode("Temperature");
    xml_.setNode("Optics");
    opticsList({nullptr, xml_.getNodeCount("OpticsDef")});
    return lines_.str();
  }

  std::string describe(unsigned int status, const ConfigCali& cali) {
    write("status", status);
    mainSection(*cali.mainSection);
    opticsList(*cali.opticsList);
    return lines_.str();
  }

 private:
  // Bit for bit: -0 and the sign of NaN included.
  void write(const std::string& field, double value) {
    lines_ << field << ' ' << std::hexfloat << value << '\n';
  }

  template <typename Body>
  void inside(const char* name, int index, Body body) {
    const bool before = present_;
    const bool entered = present_ = before && xml_.setNode(name, index);
    body();
    if (entered) xml_.resetNode();
    present_ = before;
  }

  bool read(const char* key, int* out) { return xml_.getInt(key, out); }
  bool read(const char* key, float* out) { return xml_.getFloat(key, out); }

  // One field for each key. What is no number leaves the field as it is.
  template <typename Parsed = void, typename... Fields>
  void values(const std::string& keys, Fields&... fields) {
    std::istringstream names(keys);
    (value<Parsed>(names, fields), ...);
  }
  template <typename Parsed, typename Field>
  void value(std::istream& names, Field& field) {
    using Own = std::conditional_t<std::is_same_v<Field, float>, float, int>;
    std::conditional_t<std::is_void_v<Parsed>, Own, Parsed> parsed{};
    std::string key;
    names >> key;
    parsed = static_cast<decltype(parsed)>(field);
    if (present_ && read(key.c_str(), &parsed)) field = static_cast<Field>(parsed);
    write(key, static_cast<double>(field));
  }

  std::unique_ptr<char[]> string(const char* key) {
    char* text = nullptr;
    if (present_) xml_.getString(key, &text);
    return std::unique_ptr<char[]>(text);
  }

  void mainSection(MainSection& main) {
    values(
        "TecA TecB TecC TecD AddedOffset FlagCycles FlagCycles_Ignore TempTEC_Step TempTECOffset "
        "TempTECGain TempFlagOffset TempChipFactor TempChipOffset TempBoxOffset TempOpticsOffset "
        "TempProcOffset TempHouseOffset PifInOffset PifInGain PifOutOffset PifOutGain "
        "BindTempChipToTempFlagOffset AlphaLowTemp AlphaLowFactor",
        main.TecA, main.TecB, main.TecC, main.TecD, main.AddedOffset, main.FlagCycles,
        main.FlagCycles_Ignore, main.TempTEC_Step, main.TempTECOffset, main.TempTECGain,
        main.TempFlagOffset, main.TempChipFactor, main.TempChipOffset, main.TempBoxOffset,
        main.TempOpticsOffset, main.TempProcOffset, main.TempHouseOffset, main.PifInOffset,
        main.PifInGain, main.PifOutOffset, main.PifOutGain, main.BindTempChipToTempFlagOffset,
        main.AlphaLowTemp, main.AlphaLowFactor);
  }

  void opticsList(const OpticsList& list) {
    write("optics", list.count);
    for (int i = 0; i < list.count; ++i) {
      OpticsDef fresh;
      inside("OpticsDef", i, [&] { optics(list.items != nullptr ? *list.items[i] : fresh); });
    }
  }

  void optics(OpticsDef& optics) {
    values("FOV SerNo", optics.FOV, optics.SerNo);
    const auto text = string("Text");
    const char* shown = text ? text.get() : optics.Text;
    lines_ << (shown == nullptr ? "no text" : shown) << '\n';
    const auto flag = string("SamplePointCali");
    const bool isSet = flag && strcasecmp(flag.get(), "true") == 0;
    write("SamplePointCali", optics.SamplePointCali || isSet ? 1 : 0);
    inside("TempRanges", 0, [this, &optics] { ranges(optics); });
  }

  void ranges(const OpticsDef& optics) {
    constexpr std::pair<float, float> kInitial[] = {
        {-20.0F, 100.0F}, {0.0F, 250.0F}, {150.0F, 900.0F}};
    const bool initial = !present_ && optics.ranges == nullptr;
    const int listed = present_ ? xml_.getNodeCount("TemperatureRange") : optics.rangeCount;
    write("ranges", initial ? 3 : listed);
    for (int j = 0; j < (initial ? 3 : listed); ++j) {
      TableParams table;
      TemperatureRange fresh;
      fresh.tableParams = &table;
      if (initial) std::tie(fresh.TempLo, fresh.TempHi) = kInitial[j];
      TemperatureRange& record = optics.ranges != nullptr ? *optics.ranges[j] : fresh;
      inside("TemperatureRange", j, [this, &record] { range(record); });
    }
  }

  void range(TemperatureRange& range) {
    values("Fid Skim Decimal TempLo TempHi TempLoExt TempHiExt", range.Fid, range.Skim,
           range.Decimal, range.TempLo, range.TempHi, range.TempLoExt, range.TempHiExt);
    inside("TableParams", 0, [this, &table = *range.tableParams] {
      values("Normalize T1 T3 E1 E3", table.Normalize, table.T1, table.T3, table.E1, table.E3);
      values<float>("Lambda", table.Lambda);
    });
    inside("Framerates", 0, [&] {
      const int count = present_ ? xml_.getNodeCount("Framerate") : range.framerateCount;
      write(present_ || range.framerates != nullptr ? "framerates" : "no framerates", count);
      for (int k = 0; k < count; ++k) {
        FR rate = range.framerates != nullptr ? *range.framerates[k] : FR{0};
        inside("Framerate", k, [&] { values("FR", rate); });
      }
    });
  }

  PlainXml xml_;
  std::ostringstream lines_;
  bool present_ = false;  // the element whose keys are read
};

}  // namespace

namespace {

std::size_t mostBytesPerRead = SIZE_MAX;

// What a block holds decides where the text is cut: at every line when it comes in single bytes,
// here and there, and as it comes.
std::string compareLoads(const std::string& document) {
  // Two serials in turn, so that each load first has to clear the model of the one before.
  static ConfigCali cali;
  static int serial = 1;
  writeScratchFile("Cali-1.xml", document);
  const std::string file = writeScratchFile("Cali-2.xml", document);
  const std::string expected = Ledger().load(file);
  std::string difference;
  for (const std::size_t most :
       {std::size_t{1}, std::size_t{2} << document.size() % 13, SIZE_MAX}) {
    mostBytesPerRead = most;
    serial = 3 - serial;
    const unsigned int status = cali.load(scratchFolder().c_str(), serial);
    difference = firstDifference(expected, Ledger().describe(status, cali));
    if (!difference.empty()) break;
  }
  mostBytesPerRead = SIZE_MAX;
  return difference;
}

}  // namespace

std::string compareLoaders(const std::string& document) {
  std::string difference = compareLoads(document);
  // A dash at a line end has any document read by joining its lines, and so has one where a zero
  // byte ends a line, behind which the rest of a delimiter may come.
  const std::size_t root = document.find("<CaliData");
  const std::size_t line = root == std::string::npos ? root : document.find('\n', root);
  if (!difference.empty() || line == std::string::npos) return difference;
  const std::string dashes =
      document.size() % 2 == 0 ? "x-\ny\n"s : "<!--x--\0\n><Main></Main>-->\n"s;
  return compareLoads(std::string(document).insert(line + 1, dashes));
}

}  // namespace oracle

// Stands before the C library's own, for the library as well.
extern "C" ssize_t read(int descriptor, void* to, std::size_t most) {
  return syscall(SYS_read, descriptor, to, std::min(most, oracle::mostBytesPerRead));
}
