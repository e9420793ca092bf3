#include "support/Memory.h"
#include "support/Transcript.h"

namespace {

using Calibration = InFolder;

std::string describe(const MainSection& main) {
  std::string text = shown(main.TecA, main.TecB, main.TecC, main.TecD);
  for (const float* at = &main.TempTEC_Step; at <= &main.PifOutGain; ++at) text += " " + shown(*at);
  return shown(text, main.AddedOffset, main.BindTempChipToTempFlagOffset, main.FlagCycles,
               main.FlagCycles_Ignore, main.AlphaLowTemp, main.AlphaLowFactor);
}

std::string describe(const TemperatureRange& range) {
  std::string rates = "rates";
  for (int i = 0; i < range.framerateCount; ++i) rates += " " + shown(*range.framerates[i]);
  const TableParams& table = *range.tableParams;
  return shown("\n ", range.TempLo, range.TempHi, "extended", range.TempLoExt, range.TempHiExt,
               "fid", range.Fid, "skim", range.Skim, rates, "decimal", range.Decimal, "table",
               table.Normalize, table.T1, table.T3, table.E1, table.E3, table.Lambda);
}

std::string describe(const OpticsList& list) {
  std::string text;
  for (int i = 0; i < list.count; ++i) {
    const OpticsDef& optics = *list.items[i];
    text += shown("\n", optics.FOV, optics.SerNo, shown(optics.Text), optics.SamplePointCali);
    for (int j = 0; j < optics.rangeCount; ++j) text += describe(*optics.ranges[j]);
  }
  return text;
}

}  // namespace

TEST_F(Calibration, Transcript) {
  fs::create_symlink(kSample, "sample");
  ConfigCali cali;
  Commands on;
  on["load"] = [&](auto& a) { return shown(cali.load(a[0], a[1])); };
  // Through another serial, so that nothing stays from the calibration before.
  on["file"] = [&](auto& a) {
    ardo::IRLogger::setVerbosity(ardo::IRLOGGER_OFF, ardo::IRLOGGER_OFF, nullptr);
    writeFile("Cali-7.xml", a[0].text);
    cali.load(".", 8);
    const unsigned int status = cali.load(".", 7);
    return status == 0 ? describe(*cali.opticsList) : shown(status);
  };
  on["isLoaded"] = [&](auto& a) { return shown(cali.isLoaded(a[0]), cali.serial); };
  on["main"] = [&](auto&) { return describe(*cali.mainSection); };
  on["optics"] = [&](auto&) { return describe(*cali.opticsList); };
  on["getOptics"] = [&](auto& a) {
    const std::unique_ptr<OPTICS> optics(cali.getOptics(a[0]));
    return optics ? shown(optics->FOV, shown(optics->Text)) : "null";
  };
  on["strictIndex"] = [&](auto& a) { return shown(cali.getOpticsIndex(a[0])); };
  on["lenientIndex"] = [&](auto& a) { return shown(cali.getOpticsIndex(a[0], a[1])); };
  on["ranges"] = [&](auto& a) { return shown(cali.getTempRangeCount(a[0], a[1])); };
  on["index"] = [&](auto& a) { return shown(cali.getTempRangeIndex(a[0], a[1], a[2], a[3])); };
  on["indexOf"] = [&](auto& a) { return shown(cali.getTempRangeIndex(a[0], a[1])); };
  on["range"] = [&](auto& a) { return shown(cali.getTempRange(a[0], a[1], a[2])); };
  on["extended"] = [&](auto& a) { return shown(cali.getExtendedTempRange(a[0], a[1], a[2])); };
  on["extOf"] = [&](auto& a) { return shown(cali.getExtendedTempRange(a[0], a[1], a[2], a[3])); };
  on["overAll"] = [&](auto& a) { return shown(cali.getTempRangeOverAll(a[0])); };
  on["overAllOptics"] = [&](auto&) { return shown(cali.getTempRangeOverAll()); };
  on["rates"] = [&](auto& a) { return shown(cali.getFramerateCount(a[0], a[1])); };
  on["rate"] = [&](auto& a) { return shown(cali.getFramerate(a[0], a[1], a[2])); };
  on["at"] = [&](auto& a) { return shown(cali.getFramerateIndex(a[0], a[1], a[2], a[3], a[4])); };
  on["checkRate"] = [&](auto& a) {
    unsigned short rate = a[4];
    const bool found = cali.checkFramerate(a[0], a[1], a[2], a[3], rate);
    return shown(found, rate);
  };
  on["decimal"] = [&](auto& a) { return shown(cali.getTempRangeDecimal(a[0], a[1], a[2], a[3])); };
  on["name"] = [&](auto& a) {
    char name[99];
    Range* const key = a[3];
    return cali.caliFilenameString(a[0], a[1], a[2], key, a[4], name, a[5]) ? shown(name) : "no";
  };
  runTranscript("imgproc/calibration.txt", on);
}

TEST_F(Calibration, NeedsNoMemoryForAFilesLines) {
  std::string lines;
  for (int i = 0; i < 500000; ++i) lines += "a < b - <c>1</c> <!--d-->\n";
  writeFile("Cali-7.xml", "<CaliData>\n<Main>\n" + lines +
                              "</Main><Temperature><Optics></Optics></Temperature>\n</CaliData>");
  EXPECT_EQ(inChildProcess([] {
              limitMemory(4000000);
              ConfigCali cali;
              return cali.load(".", 7);
            }),
            0);
}

// The process's locale becomes "C". A thread's own locale with a decimal comma stays: 12.5 is 12,
// as the C library reads it, however long.
TEST_F(Calibration, NumbersFollowTheThreadsLocale) {
  outputOf("localedef -i de_DE -f UTF-8 ./comma");
  setenv("LOCPATH", folder_.path().c_str(), 1);
  writeFile("Cali-7.xml",
            "<CaliData>\n<Main><TempTEC_Step>12.5</TempTEC_Step>\n"
            "<TempTECGain>12.5000000001</TempTECGain></Main>\n"
            "<Temperature><Optics></Optics></Temperature>\n</CaliData>");
  static constexpr int kNoLocale = 77;
  // The C library keeps memory for a locale; it ends with the process.
  const int result = inChildProcess([] {
    const locale_t comma = newlocale(LC_ALL_MASK, "comma", nullptr);
    if (comma == nullptr) return kNoLocale;
    setlocale(LC_ALL, "comma");
    ConfigCali first;
    first.load(".", 7);
    const auto twice = static_cast<int>(first.mainSection->TempTECGain * 2);
    uselocale(comma);
    ConfigCali cali;
    cali.load(".", 7);
    ardo::SimpleXML xml;
    xml.open("Cali-7.xml", "CaliData");
    xml.setNode();
    float step = 0;
    xml.getFloat("TempTEC_Step", &step);
    return twice + static_cast<int>(cali.mainSection->TempTEC_Step + cali.mainSection->TempTECGain +
                                    step * 2);
  });
  if (result == kNoLocale) GTEST_SKIP() << "no locale can be made: is the package locales there?";
  EXPECT_EQ(result, 25 + 12 + 12 + 2 * 12);
}
