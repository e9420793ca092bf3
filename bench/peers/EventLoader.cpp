#include "EventLoader.h"

namespace bench {

void EventLoader::begin(std::string_view name) {
  text_.clear();
  if (name == "Main") {
    record_ = Record::Main;
  } else if (name == "OpticsDef") {
    record_ = Record::Optics;
    builder_.beginOptics();
  } else if (name == "TemperatureRange") {
    record_ = Record::Range;
    builder_.beginRange();
  } else if (name == "TableParams") {
    record_ = Record::Table;
  }
}

void EventLoader::end(std::string_view name) {
  if (name == "FR") {
    builder_.addFramerate(toFramerate(text_));
  } else if (name == "Framerates") {
    builder_.endFramerates();
  } else if (name == "TableParams") {
    record_ = Record::Range;
  } else if (name == "TempRanges") {
    builder_.endRanges();
    record_ = Record::Optics;
  } else if (name == "CaliData") {
    builder_.endFile();
  } else if (record_ == Record::Main) {
    setMainValue(builder_.main(), name, text_);
  } else if (record_ == Record::Optics) {
    setOpticsValue(builder_.optics(), name, text_);
  } else if (record_ == Record::Range) {
    setRangeValue(builder_.range(), name, text_);
  } else if (record_ == Record::Table) {
    setTableValue(*builder_.range().tableParams, name, text_);
  }
}

}  // namespace bench
