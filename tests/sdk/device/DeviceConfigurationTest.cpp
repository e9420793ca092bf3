#include "support/Transcript.h"

using DeviceConfiguration = InFolder;

TEST_F(DeviceConfiguration, Transcript) {
  ardo::IRDeviceParams params{};
  // The record prints itself, but for the last three values.
  const auto printed = [&params] {
    return captured(STDOUT_FILENO, [&params] { IRDeviceParams_Print(params); }) +
           shown(params.pifOutMode, params.pifOutVoltage, params.focus);
  };
  Commands on;
  // A record has no values of its own.
  const auto makeFresh = [&params] { std::memset(&params, 0x77, sizeof params); };
  on["initDefault"] = [&](auto&) {
    makeFresh();
    params.pifOutMode = params.pifOutVoltage = 7;
    IRDeviceParams_InitDefault(params);
    return printed();
  };
  std::vector<std::string> record;   // what is printed of the last one
  std::vector<std::string> leftOut;  // what is not told again
  on["read"] = [&](auto& a) {
    makeFresh();
    const bool done = ardo::IRDeviceParamsReader::readXMLC(a[0], params);
    const std::unique_ptr<char[]> optics(params.opticsText);
    const std::unique_ptr<char[]> formats(params.formatsPath);
    const std::unique_ptr<char[]> cali(params.caliPath);
    std::string text = shown(done);
    record = linesOf(printed());
    for (const std::string& line : record) {
      if (std::count(leftOut.begin(), leftOut.end(), line) == 0) text += "\n" + line;
    }
    return text;
  };
  on["leaveOut"] = [&](auto&) {
    leftOut = record;
    return "";
  };
  on["content"] = [&](auto& a) {
    ardo::IRLogger::setVerbosity(ardo::IRLOGGER_WARNING, ardo::IRLOGGER_OFF, nullptr);
    a[0].text = writeFile("x.xml", "<imager>\n" + a[0].text + "\n");
    return on["read"](a);
  };
  writeFile("other.xml", "<images>\n<fov>3</fov>\n");
  runTranscript("sdk/device/device_configuration.txt", on);
}
