#include "ModelBuilder.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace bench {
namespace {

template <typename Number>
void parse(std::string_view text, Number& value) {
  std::from_chars(text.data(), text.data() + text.size(), value);
}

// Integers are read whole and cut to the field's size.
void parse(std::string_view text, std::uint16_t& value) {
  int number = value;
  parse(text, number);
  value = static_cast<std::uint16_t>(number);
}

void parse(std::string_view text, std::int16_t& value) {
  int number = value;
  parse(text, number);
  value = static_cast<std::int16_t>(number);
}

template <typename Record>
struct Field {
  std::string_view name;
  void (*set)(Record& record, std::string_view text);
};

template <auto member, typename Record>
void set(Record& record, std::string_view text) {
  parse(text, record.*member);
}

template <auto member>
void setFromInteger(TableParams& table, std::string_view text) {
  int number = 0;
  parse(text, number);
  table.*member = number;
}

void setLambda(TableParams& table, std::string_view text) {
  float number = 0;
  parse(text, number);
  table.Lambda = static_cast<double>(number);
}

void setNormalize(TableParams& table, std::string_view text) {
  int number = 0;
  parse(text, number);
  table.Normalize = number != 0;
}

void setText(OpticsDef& optics, std::string_view text) {
  optics.Text = new char[text.size() + 1];
  std::memcpy(optics.Text, text.data(), text.size());
  optics.Text[text.size()] = '\0';
}

void setSamplePointCali(OpticsDef& optics, std::string_view text) {
  constexpr std::string_view kTrue = "true";
  optics.SamplePointCali =
      std::equal(text.begin(), text.end(), kTrue.begin(), kTrue.end(),
                 [](char letter, char lower) { return (letter | 0x20) == lower; });
}

constexpr Field<MainSection> kMainFields[] = {
    {"TecA", set<&MainSection::TecA>},
    {"TecB", set<&MainSection::TecB>},
    {"TecC", set<&MainSection::TecC>},
    {"TecD", set<&MainSection::TecD>},
    {"TempTEC_Step", set<&MainSection::TempTEC_Step>},
    {"TempTECOffset", set<&MainSection::TempTECOffset>},
    {"TempTECGain", set<&MainSection::TempTECGain>},
    {"TempFlagOffset", set<&MainSection::TempFlagOffset>},
    {"TempChipFactor", set<&MainSection::TempChipFactor>},
    {"TempChipOffset", set<&MainSection::TempChipOffset>},
    {"TempBoxOffset", set<&MainSection::TempBoxOffset>},
    {"TempOpticsOffset", set<&MainSection::TempOpticsOffset>},
    {"TempProcOffset", set<&MainSection::TempProcOffset>},
    {"TempHouseOffset", set<&MainSection::TempHouseOffset>},
    {"PifInOffset", set<&MainSection::PifInOffset>},
    {"PifInGain", set<&MainSection::PifInGain>},
    {"PifOutOffset", set<&MainSection::PifOutOffset>},
    {"PifOutGain", set<&MainSection::PifOutGain>},
    {"AddedOffset", set<&MainSection::AddedOffset>},
    {"BindTempChipToTempFlagOffset", set<&MainSection::BindTempChipToTempFlagOffset>},
    {"FlagCycles", set<&MainSection::FlagCycles>},
    {"FlagCycles_Ignore", set<&MainSection::FlagCycles_Ignore>},
    {"AlphaLowTemp", set<&MainSection::AlphaLowTemp>},
    {"AlphaLowFactor", set<&MainSection::AlphaLowFactor>},
};

constexpr Field<OpticsDef> kOpticsFields[] = {
    {"FOV", set<&OpticsDef::FOV>},
    {"SerNo", set<&OpticsDef::SerNo>},
    {"Text", setText},
    {"SamplePointCali", setSamplePointCali},
};

constexpr Field<TemperatureRange> kRangeFields[] = {
    {"Fid", set<&TemperatureRange::Fid>},
    {"Skim", set<&TemperatureRange::Skim>},
    {"TempLo", set<&TemperatureRange::TempLo>},
    {"TempHi", set<&TemperatureRange::TempHi>},
    {"TempLoExt", set<&TemperatureRange::TempLoExt>},
    {"TempHiExt", set<&TemperatureRange::TempHiExt>},
    {"Decimal", set<&TemperatureRange::Decimal>},
};

constexpr Field<TableParams> kTableFields[] = {
    {"Normalize", setNormalize},
    {"T1", setFromInteger<&TableParams::T1>},
    {"T3", setFromInteger<&TableParams::T3>},
    {"E1", set<&TableParams::E1>},
    {"E3", set<&TableParams::E3>},
    {"Lambda", setLambda},
};

template <typename Fields, typename Record>
void setField(const Fields& fields, Record& record, std::string_view name, std::string_view text) {
  for (const auto& field : fields) {
    if (field.name == name) return field.set(record, text);
  }
}

// Moves a list's records into an array of the model's form and empties the list.
template <typename Record>
void moveToArray(std::vector<Record*>& list, Record**& array, std::int32_t& count) {
  count = static_cast<std::int32_t>(list.size());
  array = new Record*[list.size()];
  std::copy(list.begin(), list.end(), array);
  list.clear();
}

void release(OpticsDef* optics) {
  for (std::int32_t i = 0; i < optics->rangeCount; ++i) {
    delete optics->ranges[i]->tableParams;
    delete optics->ranges[i];
  }
  delete[] optics->ranges;
  delete optics;
}

}  // namespace

void setMainValue(MainSection& main, std::string_view name, std::string_view text) {
  setField(kMainFields, main, name, text);
}

void setOpticsValue(OpticsDef& optics, std::string_view name, std::string_view text) {
  setField(kOpticsFields, optics, name, text);
}

void setRangeValue(TemperatureRange& range, std::string_view name, std::string_view text) {
  setField(kRangeFields, range, name, text);
}

void setTableValue(TableParams& table, std::string_view name, std::string_view text) {
  setField(kTableFields, table, name, text);
}

FR toFramerate(std::string_view text) {
  FR framerate = 0;
  parse(text, framerate);
  return framerate;
}

ModelBuilder::ModelBuilder(ConfigCali& calibration) : calibration_(calibration) {
  OpticsList& list = *calibration.opticsList;
  std::for_each(list.items, list.items + list.count, release);
  delete[] list.items;
  list.items = nullptr;
  list.count = 0;
}

void ModelBuilder::beginOptics() { optics_.push_back(new OpticsDef); }

void ModelBuilder::beginRange() {
  ranges_.push_back(new TemperatureRange);
  range().tableParams = new TableParams;
}

void ModelBuilder::endFramerates() {
  moveToArray(framerates_, range().framerates, range().framerateCount);
}

void ModelBuilder::endRanges() { moveToArray(ranges_, optics().ranges, optics().rangeCount); }

void ModelBuilder::endFile() {
  moveToArray(optics_, calibration_.opticsList->items, calibration_.opticsList->count);
}

}  // namespace bench
