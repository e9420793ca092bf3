// Reader of the device configuration file.
#include <kalvista/IRDeviceParams.h>
#include <kalvista/SimpleXML.h>

#include "sdk/log/LogMessage.h"
#include "sdk/text/NumberText.h"
#include "sdk/xml/SimpleXMLInternals.h"

namespace ardo {

namespace {

constexpr const char* kSource = "IRDeviceParams";
constexpr int kLineDeprecated = 128;
constexpr int kLineNotFound = 141;
constexpr int kLineParameters = 146;  // the values follow, a line each

void setReaderDefaults(IRDeviceParams& params) {
  IRDeviceParams_InitDefault(params);
  params.tMin = 0;
  params.tMax = 0;
  params.framerate = 30.0F;
  params.videoFormatIndex = -1;
  params.pifOutMode = 0;
  params.pifOutVoltage = 0;
}

// As wide as the record, also where a long is not.
void readSerial(SimpleXML& document, IRDeviceParams& params) {
  if (!document.setNode("serial")) return;
  long long serial = 0;
  readNumber(SimpleXMLInternals::contentOf(document), &serial);
  params.serial = static_cast<std::uint64_t>(serial);
  document.resetNode();
}

void readIdentity(SimpleXML& document, IRDeviceParams& params) {
  readSerial(document, params);
  document.getInt("videoformatindex", &params.videoFormatIndex);
  document.getInt("fov", &params.fov);
  document.getString("optics_text", &params.opticsText);
  document.getString("calipath", &params.caliPath);
  document.getString("formatspath", &params.formatsPath);
}

void readTemperature(SimpleXML& document, IRDeviceParams& params) {
  if (document.setNode("temperature")) {
    document.getInt("min", &params.tMin);
    document.getInt("max", &params.tMax);
  }
  document.setNode();
}

void readAutoFlag(SimpleXML& document, IRDeviceParams& params) {
  if (document.setNode("autoflag")) {
    document.getInt("enable", &params.autoFlag);
    document.getFloat("mininterval", &params.minInterval);
    document.getFloat("maxinterval", &params.maxInterval);
  }
  document.setNode();
}

// The key of former versions is read first, so that the new one wins when both are there.
void readProcessInterface(SimpleXML& document, IRDeviceParams& params) {
  if (document.getInt("pifmode", &params.pifInMode)) {
    logMessage(kLogWarning, kSource, kLineDeprecated,
               "XML parameter 'pifmode' is deprecated, please use 'pif_in_mode' instead.");
  }
  document.getInt("pif_in_mode", &params.pifInMode);
  document.getInt("pif_out_mode", &params.pifOutMode);
  document.getInt("pif_out_voltage", &params.pifOutVoltage);
}

void readDocument(SimpleXML& document, IRDeviceParams& params) {
  document.setNode();
  readIdentity(document, params);
  readTemperature(document, params);
  document.getFloat("framerate", &params.framerate);
  document.getInt("bispectral", &params.bispectral);
  document.getInt("average", &params.average);
  readAutoFlag(document, params);
  readProcessInterface(document, params);
  document.getInt("tchipmode", &params.tChipMode);
  document.getFloat("tchipfixedvalue", &params.tChipFixedValue);
  document.getFloat("focus", &params.focus);
}

void logParameters(const IRDeviceParams& params) {
  int line = kLineParameters;
  logMessage(kLogDebug, kSource, line, "Parameters");
  const auto logValue = [&line](const char* label, const auto& value) {
    logMessage(kLogDebug, kSource, ++line, label, value);
  };
  logValue("serial: ", params.serial);
  logValue("videoformatindex: ", params.videoFormatIndex);
  logValue("fov: ", params.fov);
  logValue("optics_text: ", params.opticsText);
  logValue("formatspath: ", params.formatsPath);
  logValue("calipath: ", params.caliPath);
  logValue("temperature min: ", params.tMin);
  logValue("temperature max: ", params.tMax);
  logValue("framerate: ", params.framerate);
  logValue("bispectral: ", params.bispectral);
  logValue("average: ", params.average);
  logValue("flag automatic: ", params.autoFlag);
  logValue("min interval: ", params.minInterval);
  logValue("max interval: ", params.maxInterval);
  logValue("PIF mode: ", params.pifInMode);
  logValue("chip heating mode: ", params.tChipMode);
  logValue("chip heating fixed val: ", params.tChipFixedValue);
  logValue("focus:  ", params.focus);
}

}  // namespace

bool IRDeviceParamsReader::readXML(const char* file, IRDeviceParams& params) {
  setReaderDefaults(params);
  SimpleXML document;
  if (!document.open(file, "imager") || !document.hasRoot()) {
    logMessage(kLogError, kSource, kLineNotFound, "Cannot find configuration file ", file,
               " ... aborting");
    return false;
  }
  readDocument(document, params);
  logParameters(params);
  return true;
}

bool IRDeviceParamsReader::readXMLC(const char* file, IRDeviceParams& params) {
  return readXML(file, params);
}

}  // namespace ardo
