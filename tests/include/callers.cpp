#include <kalvista/kalvista.h>

// Instantiated with constant objects and with others.
template <typename Calibration, typename Document, typename Manager>
bool query(Calibration& c, Document& d, Manager& m, OPTICS* o, Range* r, unsigned short fr) {
  char* text = nullptr;
  char name[260];
  return c.isLoaded(1) && c.getOpticsCount() + c.getOpticsIndex(o) + c.getOpticsIndex(1, text) &&
         c.getOptics(0) && c.getTempRangeCount(o) + c.getTempRangeCount(1, text) &&
         c.getTempRangeIndex(o, r) + c.getTempRangeIndex(1, text, 0, 0) && c.getTempRange(o, 0) &&
         c.getTempRange(1, text, 0) && c.getExtendedTempRange(o, 0) &&
         c.getExtendedTempRange(1, text, 0) && c.getExtendedTempRange(1, text, 0, 0) &&
         c.getTempRangeOverAll(o) && c.getTempRangeOverAll() && c.getFramerateCount(o, r) &&
         c.getFramerateIndex(o, r, fr) && c.getFramerateIndex(1, text, 0, 0, fr) &&
         c.getFramerate(o, r, 0) && c.checkFramerate(o, r, fr) &&
         c.checkFramerate(1, text, 0, 0, fr) && c.getTempRangeDecimal(1, text, 0, 0) &&
         c.caliFilenameString(1, 1, text, 0, 0, fr, name, 260) &&
         c.caliFilenameString(1, 1, text, r, fr, name, 260) && d.hasRoot() &&
         d.getNodeCount(name) + d.getKey(name, 0, 1, true) && d.getNode(&text) &&
         m.getCalibrationDir() == m.getFormatsDir();
}
template bool query(const ConfigCali&, const ardo::SimpleXML&, const ardo::IRCalibrationManager&,
                    OPTICS*, Range*, unsigned short);
template bool query(ConfigCali&, ardo::SimpleXML&, ardo::IRCalibrationManager&, OPTICS*, Range*,
                    unsigned short);

void configure(brivex::Logger& log) {
  log.configure("a", brivex::LOGGER_FILE_ON | brivex::LOGGER_CONSOLE_ON, 0, 0);
  const int sinks = brivex::LOGGER_FILE_OFF | brivex::LOGGER_CONSOLE_OFF | brivex::LOGGER_FILE_ON;
  log.configure("a", static_cast<brivex::loggerConf_>(sinks), 0, 0);
}
