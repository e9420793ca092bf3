#include "imgproc/CaliFormat.h"

#include <kalvista/TextRoutines.h>

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>
#include <utility>

namespace cali {

namespace {

bool holdsLineEnd(std::string_view text) {
  return text.find_first_of("\r\n") != std::string_view::npos;
}

template <typename Number>
void read(Records& records, std::string_view text, Number* value) {
  if (records.plainNumbers && ardo::readPlainNumber(text, value)) return;
  records.lineEndInValue |= holdsLineEnd(text);
  ardo::scanNumber(text, value);
}

// A text that is no number leaves its field as it is.
template <typename Parsed, typename Field>
void storeAs(Records& records, std::string_view text, Field& field) {
  auto value = static_cast<Parsed>(field);
  read(records, text, &value);
  field = static_cast<Field>(value);
}

template <typename Field>
void store(Records& records, std::string_view text, Field& field) {
  if constexpr (std::is_same_v<Field, std::int32_t> || std::is_same_v<Field, float>) {
    read(records, text, &field);
  } else {
    storeAs<int>(records, text, field);
  }
}

template <auto Field>
void inMain(Records& records, std::string_view text) {
  store(records, text, records.main.*Field);
}

template <auto Field>
void inOptics(Records& records, std::string_view text) {
  store(records, text, (*records.optics).*Field);
}

template <auto Field>
void inRange(Records& records, std::string_view text) {
  store(records, text, (*records.range).*Field);
}

template <auto Field>
void inTable(Records& records, std::string_view text) {
  store(records, text, records.tableParams.*Field);
}

template <typename Parsed, auto Field>
void inTableAs(Records& records, std::string_view text) {
  storeAs<Parsed>(records, text, records.tableParams.*Field);
}

void storeFramerate(Records& records, std::string_view text) {
  store(records, text, records.framerate);
}

void storeText(Records& records, std::string_view text) {
  records.lineEndInValue |= holdsLineEnd(text);
  auto copy = std::make_unique<char[]>(text.size() + 1);
  std::copy(text.begin(), text.end(), copy.get());
  records.optics->Text = copy.release();
}

void storeSamplePointCali(Records& records, std::string_view text) {
  records.lineEndInValue |= holdsLineEnd(text);
  std::string lower(text);
  tstrlwr(lower.data());
  records.optics->SamplePointCali = lower == "true";
}

void openMain(Records& records) { records.main = records.mainBefore; }

void openOptics(Records& records) { records.opticsList.clear(); }

void openOpticsDef(Records& records) { records.optics = makeOptics(); }

void closeOpticsDef(Records& records, std::string_view /*text*/) {
  if (records.optics->ranges == nullptr) setDefaultRanges(*records.optics);
  records.opticsList.push_back(std::move(records.optics));
}

void openTempRanges(Records& records) { records.ranges.clear(); }

void closeTempRanges(Records& records, std::string_view /*text*/) {
  setRanges(*records.optics, records.ranges);
}

void openTemperatureRange(Records& records) { records.range = makeRange(); }

void closeTemperatureRange(Records& records, std::string_view /*text*/) {
  records.ranges.push_back(std::move(records.range));
}

void openFramerates(Records& records) { records.framerates.clear(); }

void closeFramerates(Records& records, std::string_view /*text*/) {
  setFramerates(*records.range, records.framerates);
}

void openFramerate(Records& records) { records.framerate = 0; }

void closeFramerate(Records& records, std::string_view /*text*/) {
  records.framerates.push_back(records.framerate);
}

void openTableParams(Records& records) { records.tableParams = TableParams(); }

void closeTableParams(Records& records, std::string_view /*text*/) {
  *records.range->tableParams = records.tableParams;
}

constexpr ElementRule container(std::string_view name, std::size_t parent, void (*open)(Records&),
                                void (*close)(Records&, std::string_view)) {
  return {name, parent, false, open, close, 0, 0};
}

constexpr ElementRule repeated(std::string_view name, std::size_t parent, void (*open)(Records&),
                               void (*close)(Records&, std::string_view)) {
  return {name, parent, true, open, close, 0, 0};
}

constexpr ElementRule value(std::string_view name, std::size_t parent,
                            void (*close)(Records&, std::string_view)) {
  return {name, parent, false, nullptr, close, 0, 0};
}

constexpr std::array kRules{
    container("Main", kNoElement, openMain, nullptr),
    container("Temperature", kNoElement, nullptr, nullptr),
    container("Optics", kTemperature, openOptics, nullptr),
    repeated("OpticsDef", kOptics, openOpticsDef, closeOpticsDef),
    container("TempRanges", kOpticsDef, openTempRanges, closeTempRanges),
    repeated("TemperatureRange", kTempRanges, openTemperatureRange, closeTemperatureRange),
    container("Framerates", kTemperatureRange, openFramerates, closeFramerates),
    repeated("Framerate", kFramerates, openFramerate, closeFramerate),
    container("TableParams", kTemperatureRange, openTableParams, closeTableParams),

    value("TecA", kMain, inMain<&MainSection::TecA>),
    value("TecB", kMain, inMain<&MainSection::TecB>),
    value("TecC", kMain, inMain<&MainSection::TecC>),
    value("TecD", kMain, inMain<&MainSection::TecD>),
    value("TempTEC_Step", kMain, inMain<&MainSection::TempTEC_Step>),
    value("TempTECOffset", kMain, inMain<&MainSection::TempTECOffset>),
    value("TempTECGain", kMain, inMain<&MainSection::TempTECGain>),
    value("TempFlagOffset", kMain, inMain<&MainSection::TempFlagOffset>),
    value("TempChipFactor", kMain, inMain<&MainSection::TempChipFactor>),
    value("TempChipOffset", kMain, inMain<&MainSection::TempChipOffset>),
    value("TempBoxOffset", kMain, inMain<&MainSection::TempBoxOffset>),
    value("TempOpticsOffset", kMain, inMain<&MainSection::TempOpticsOffset>),
    value("TempProcOffset", kMain, inMain<&MainSection::TempProcOffset>),
    value("TempHouseOffset", kMain, inMain<&MainSection::TempHouseOffset>),
    value("PifInOffset", kMain, inMain<&MainSection::PifInOffset>),
    value("PifInGain", kMain, inMain<&MainSection::PifInGain>),
    value("PifOutOffset", kMain, inMain<&MainSection::PifOutOffset>),
    value("PifOutGain", kMain, inMain<&MainSection::PifOutGain>),
    value("AddedOffset", kMain, inMain<&MainSection::AddedOffset>),
    value("BindTempChipToTempFlagOffset", kMain,
          inMain<&MainSection::BindTempChipToTempFlagOffset>),
    value("FlagCycles", kMain, inMain<&MainSection::FlagCycles>),
    value("FlagCycles_Ignore", kMain, inMain<&MainSection::FlagCycles_Ignore>),
    value("AlphaLowTemp", kMain, inMain<&MainSection::AlphaLowTemp>),
    value("AlphaLowFactor", kMain, inMain<&MainSection::AlphaLowFactor>),

    value("FOV", kOpticsDef, inOptics<&OpticsDef::FOV>),
    value("SerNo", kOpticsDef, inOptics<&OpticsDef::SerNo>),
    value("Text", kOpticsDef, storeText),
    value("SamplePointCali", kOpticsDef, storeSamplePointCali),

    value("Fid", kTemperatureRange, inRange<&TemperatureRange::Fid>),
    value("Skim", kTemperatureRange, inRange<&TemperatureRange::Skim>),
    value("TempLo", kTemperatureRange, inRange<&TemperatureRange::TempLo>),
    value("TempHi", kTemperatureRange, inRange<&TemperatureRange::TempHi>),
    value("TempLoExt", kTemperatureRange, inRange<&TemperatureRange::TempLoExt>),
    value("TempHiExt", kTemperatureRange, inRange<&TemperatureRange::TempHiExt>),
    value("Decimal", kTemperatureRange, inRange<&TemperatureRange::Decimal>),
    value("FR", kFramerate, storeFramerate),

    value("Normalize", kTableParams, inTable<&TableParams::Normalize>),
    value("T1", kTableParams, inTableAs<int, &TableParams::T1>),
    value("T3", kTableParams, inTableAs<int, &TableParams::T3>),
    value("E1", kTableParams, inTable<&TableParams::E1>),
    value("E3", kTableParams, inTable<&TableParams::E3>),
    value("Lambda", kTableParams, inTableAs<float, &TableParams::Lambda>),
};
static_assert(kRules.size() == kElementCount && kElementCount <= kNoElement);
static_assert(kRules[kTableParams].name == "TableParams");

constexpr auto withFamilies(std::array<ElementRule, kElementCount> rules) {
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (rules[i].parent != kNoElement) rules[rules[i].parent].children |= setOf(i);
    for (std::size_t at = rules[i].parent; at != kNoElement; at = rules[at].parent) {
      rules[at].descendants |= setOf(i);
    }
  }
  return rules;
}

// Names are told apart by a table in which each of them has a slot of its own. Whoever adds a name
// that meets another's slot changes the weights.
constexpr std::size_t kSlots = 256;

constexpr std::size_t slotOf(std::string_view name) {
  const auto at = [name](std::size_t i) {
    return std::size_t{static_cast<unsigned char>(name[i])};
  };
  return (name.size() + at(0) + 3 * at(name.size() / 2) + 13 * at(name.size() - 1)) % kSlots;
}

constexpr bool everyNameHasItsSlot() {
  std::array<bool, kSlots> taken{};
  for (const ElementRule& rule : kRules) {
    const std::size_t slot = slotOf(rule.name);
    if (taken[slot]) return false;
    taken[slot] = true;
  }
  return true;
}
static_assert(everyNameHasItsSlot());

// A slot that is empty leads to the first rule, whose name is another then.
constexpr std::array<std::uint8_t, kSlots> fillSlots() {
  std::array<std::uint8_t, kSlots> slots{};
  for (std::size_t i = 1; i < kRules.size(); ++i) {
    slots[slotOf(kRules[i].name)] = static_cast<std::uint8_t>(i);
  }
  return slots;
}

constexpr std::array<std::uint8_t, kSlots> kElementInSlot = fillSlots();

}  // namespace

constexpr std::array<ElementRule, kElementCount> kElementRules = withFamilies(kRules);

std::size_t elementNamed(std::string_view name) {
  if (name.empty()) return kNoElement;
  const std::size_t element = kElementInSlot[slotOf(name)];
  return kRules[element].name == name ? element : kNoElement;
}

}  // namespace cali
