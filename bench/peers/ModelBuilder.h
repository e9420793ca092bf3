// Fills a calibration model element by element, in file order. Shared by all peers, so that they
// differ in nothing but how they read XML.
#ifndef KALVISTA_BENCH_PEERS_MODEL_BUILDER_H
#define KALVISTA_BENCH_PEERS_MODEL_BUILDER_H

#include <kalvista/Cali.h>

#include <string_view>
#include <vector>

namespace bench {

// What the names of elements say at one level of the file; other names are passed over.
void setMainValue(MainSection& main, std::string_view name, std::string_view text);
void setOpticsValue(OpticsDef& optics, std::string_view name, std::string_view text);
void setRangeValue(TemperatureRange& range, std::string_view name, std::string_view text);
void setTableValue(TableParams& table, std::string_view name, std::string_view text);
FR toFramerate(std::string_view text);

// Records are made when they begin and handed to the model when they end. The lists are kept from
// record to record, so that growing them costs nothing in the long run.
class ModelBuilder {
 public:
  // Releases the optics that a new calibration begins with.
  explicit ModelBuilder(ConfigCali& calibration);

  MainSection& main() { return *calibration_.mainSection; }
  OpticsDef& optics() { return *optics_.back(); }
  TemperatureRange& range() { return *ranges_.back(); }

  void beginOptics();
  void beginRange();
  void addFramerate(FR framerate) { framerates_.push_back(new FR(framerate)); }
  void endFramerates();
  void endRanges();
  void endFile();

 private:
  ConfigCali& calibration_;
  std::vector<OpticsDef*> optics_;
  std::vector<TemperatureRange*> ranges_;
  std::vector<FR*> framerates_;
};

}  // namespace bench

#endif  // KALVISTA_BENCH_PEERS_MODEL_BUILDER_H
