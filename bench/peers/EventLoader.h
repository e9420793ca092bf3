// Fills the calibration model from the events of a parser: element begins, text, element ends.
#ifndef KALVISTA_BENCH_PEERS_EVENT_LOADER_H
#define KALVISTA_BENCH_PEERS_EVENT_LOADER_H

#include <string>

#include "ModelBuilder.h"

namespace bench {

class EventLoader {
 public:
  explicit EventLoader(ConfigCali& calibration) : builder_(calibration) {}

  void begin(std::string_view name);
  void text(std::string_view part) { text_ += part; }
  void end(std::string_view name);

 private:
  // The record whose values are being read.
  enum class Record { None, Main, Optics, Range, Table };

  ModelBuilder builder_;
  Record record_ = Record::None;
  std::string text_;  // of the element that began last
};

}  // namespace bench

#endif  // KALVISTA_BENCH_PEERS_EVENT_LOADER_H
