// IRCalibrationManager: the default device configuration document.
#include <kalvista/IRCalibrationManager.h>
#include <kalvista/SimpleXML.h>

#include <string>

#include "sdk/text/NoThrow.h"

namespace ardo {

namespace {

struct FirstOptics {
  int fieldOfView = 0;
  int lowest = -20;
  int highest = 100;
};

// Levels are entered as far as they exist: a value is then looked for at the last one.
FirstOptics readFirstOptics(const std::string& file) {
  FirstOptics first;
  SimpleXML document;
  if (!document.open(file.c_str(), "CaliData")) return first;
  document.setNode();
  for (const char* level : {"Temperature", "Optics", "OpticsDef"}) document.setNode(level);
  document.getInt("FOV", &first.fieldOfView);
  for (const char* level : {"TempRanges", "TemperatureRange"}) document.setNode(level);
  document.getInt("TempLo", &first.lowest);
  document.getInt("TempHi", &first.highest);
  return first;
}

constexpr const char* kStart = R"(<?xml version="1.0" encoding="UTF-8"?>
<imager xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xmlns:xsd="http://www.w3.org/2001/XMLSchema">
)";

constexpr const char* kAfterSerial =
    R"(   <!-- Provide serial number, if you attach more than one camera -->
  <videoformatindex>0</videoformatindex> <!-- index of the used video format (USB endpoint) -->
)";

constexpr const char* kHint =
    R"(  <!-- Uncomment the following lines to specify user-defined parameters for the desired optic
       and temperature range. Be aware to specify meaningful parameters.
       See documentation for further information: )" KALVISTA_DOCUMENTATION_URL R"(
       By default, the first available optic and the first meaningful temperature range are selected.
  -->
  <!--
)";

constexpr const char* kEnd = R"(  </temperature>
  <optics_text></optics_text>
  -->
  <framerate>32.0</framerate>             <!-- scaled down frame rate, must be less or equal than camera frame rate -->
  <bispectral>0</bispectral>              <!-- 0=only thermal sensor, 1=bispectral technology (only VX540/VX570) -->
  <average>0</average>                    <!-- average callback frames over intermediate frames -->
  <autoflag>
    <enable>1</enable>
    <mininterval>15.0</mininterval>
    <maxinterval>0.0</maxinterval>
  </autoflag>
  <pif_in_mode>0</pif_in_mode>            <!-- 0=Image capture (default), 1=Flag control -->
  <pif_out_mode>0</pif_out_mode>          <!-- 0=Off (default), 1=Frame sync signal -->
  <pif_out_voltage>5000</pif_out_voltage> <!-- PIF out voltage in mV -->
  <tchipmode>0</tchipmode>                <!-- 0=Floating (default), 1=Auto, 2=Fixed value -->
  <tchipfixedvalue>40.0</tchipfixedvalue> <!-- Fixed value for tchipmode=2 -->
  <focus>50.0</focus> <!-- position of focus motor in % of range [0; 100] -->
</imager>
)";

std::string element(const std::string& indent, const std::string& name, const std::string& text) {
  return indent + "<" + name + ">" + text + "</" + name + ">";
}

std::string compose(unsigned long serial, const std::string& calibrationDir,
                    const std::string& formatsDir) {
  const std::string number = std::to_string(serial);
  const FirstOptics first = readFirstOptics(calibrationDir + "/Cali-" + number + ".xml");

  std::string document = kStart;
  document += element("  ", "serial", number) + kAfterSerial;
  document += element("  ", "formatspath", formatsDir) + "\n";
  document += element("  ", "calipath", calibrationDir) + "\n";
  document += kHint;
  document += element("  ", "fov", std::to_string(first.fieldOfView)) + "\n";
  document += "  <temperature>\n";
  document += element("    ", "min", std::to_string(first.lowest)) + "\n";
  document += element("    ", "max", std::to_string(first.highest)) + "\n";
  return document + kEnd;
}

}  // namespace

std::string IRCalibrationManager::generateConfiguration(unsigned long serial) {
  return withoutThrowing(std::string(),
                         [&] { return compose(serial, getCalibrationDir(), getFormatsDir()); });
}

}  // namespace ardo
