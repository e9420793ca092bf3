// Reader of the device configuration file.
#include <kalvista/IRDeviceParams.h>
#include <kalvista/SimpleXML.h>

#include "sdk/log/LogMessage.h"
#include "sdk/text/NumberText.h"
#include "sdk/xml/SimpleXMLInternals.h"

namespace ardo {

namespace {

constexpr const char* kParamsSource = "IRDeviceParams";
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

// False when the text is there, but no memory for it.
bool readText(SimpleXML& document, const char* name, char*& text) {
  if (!document.setNode(name)) return true;
  document.resetNode();
  return document.getString(name, &text);
}

bool readIdentity(SimpleXML& document, IRDeviceParams& params) {
  readSerial(document, params);
  document.getInt("videoformatindex", &params.videoFormatIndex);
  document.getInt("fov", &params.fov);
  return readText(document, "optics_text", params.opticsText) &&
         readText(document, "calipath", params.caliPath) &&
         readText(document, "formatspath", params.formatsPath);
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
    logMessage(kLogWarning, kParamsSource, kLineDeprecated,
               "XML parameter 'pifmode' is deprecated, please use 'pif_in_mode' instead.");
  }
  document.getInt("pif_in_mode", &params.pifInMode);
  document.getInt("pif_out_mode", &params.pifOutMode);
  document.getInt("pif_out_voltage", &params.pifOutVoltage);
}

// Without memory for all of it, nothing is read.
bool readDocument(SimpleXML& document, IRDeviceParams& params) {
  document.setNode();
  if (!readIdentity(document, params)) {
    for (const char* text : {params.opticsText, params.caliPath, params.formatsPath}) delete[] text;
    setReaderDefaults(params);
    return false;
  }
  readTemperature(document, params);
  document.getFloat("framerate", &params.framerate);
  document.getInt("bispectral", &params.bispectral);
  document.getInt("average", &params.average);
  readAutoFlag(document, params);
  readProcessInterface(document, params);
  document.getInt("tchipmode", &params.tChipMode);
  document.getFloat("tchipfixedvalue", &params.tChipFixedValue);
  document.getFloat("focus", &params.focus);
  return true;
}

void logParameters(const IRDeviceParams& params) {
  int line = kLineParameters;
  logMessage(kLogDebug, kParamsSource, line, "Parameters");
  const auto logValue = [&line](const char* label, const auto& value) {
    logMessage(kLogDebug, kParamsSource, ++line, label, value);
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
  if (!document.open(file, "imager") || !document.hasRoot() || !readDocument(document, params)) {
    logMessage(kLogError, kParamsSource, kLineNotFound, "Cannot find configuration file ", file,
               " ... aborting");
    return false;
  }
  logParameters(params);
  return true;
}

bool IRDeviceParamsReader::readXMLC(const char* file, IRDeviceParams& params) {
  return readXML(file, params);
}

}  // namespace ardo
