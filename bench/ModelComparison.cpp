#include "ModelComparison.h"

#include <algorithm>
#include <string_view>
#include <tuple>

namespace bench {
namespace {

auto values(const MainSection& main) {
  return std::tie(main.TecA, main.TecB, main.TecC, main.TecD, main.TempTEC_Step, main.mainReserved,
                  main.TempTECOffset, main.TempTECGain, main.TempFlagOffset, main.TempChipFactor,
                  main.TempChipOffset, main.TempBoxOffset, main.TempOpticsOffset,
                  main.TempProcOffset, main.TempHouseOffset, main.PifInOffset, main.PifInGain,
                  main.PifOutOffset, main.PifOutGain, main.AddedOffset,
                  main.BindTempChipToTempFlagOffset, main.FlagCycles, main.FlagCycles_Ignore,
                  main.AlphaLowTemp, main.AlphaLowFactor);
}

auto values(const OpticsDef& optics) {
  return std::tie(optics.FOV, optics.SerNo, optics.reserved, optics.SamplePointCali,
                  optics.rangeCount);
}

auto values(const TemperatureRange& range) {
  return std::tie(range.Fid, range.Skim, range.TempLo, range.TempHi, range.TempLoExt,
                  range.TempHiExt, range.framerateCount, range.Decimal);
}

auto values(const TableParams& table) {
  return std::tie(table.T1, table.T3, table.E1, table.E3, table.Lambda, table.tableReserved1,
                  table.tableReserved2, table.tableReserved3, table.Normalize);
}

bool sameText(const char* one, const char* other) {
  if (one == nullptr || other == nullptr) return one == other;
  return std::string_view(one) == other;
}

bool sameFramerates(const TemperatureRange& one, const TemperatureRange& other) {
  return std::equal(one.framerates, one.framerates + one.framerateCount, other.framerates,
                    [](const FR* left, const FR* right) { return *left == *right; });
}

std::string rangeDifference(const TemperatureRange& one, const TemperatureRange& other) {
  if (values(one) != values(other)) return "values";
  if (!sameFramerates(one, other)) return "frame rates";
  if (values(*one.tableParams) != values(*other.tableParams)) return "table parameters";
  return {};
}

std::string opticsDifference(const OpticsDef& one, const OpticsDef& other) {
  if (values(one) != values(other) || !sameText(one.Text, other.Text)) return "values";
  for (std::int32_t i = 0; i < one.rangeCount; ++i) {
    const std::string difference = rangeDifference(*one.ranges[i], *other.ranges[i]);
    if (!difference.empty()) return "range " + std::to_string(i) + ", " + difference;
  }
  return {};
}

}  // namespace

std::string firstDifference(const ConfigCali& one, const ConfigCali& other) {
  if (values(*one.mainSection) != values(*other.mainSection)) return "device constants";
  if (one.opticsList->count != other.opticsList->count) return "count of optics";
  for (std::int32_t i = 0; i < one.opticsList->count; ++i) {
    const std::string difference =
        opticsDifference(*one.opticsList->items[i], *other.opticsList->items[i]);
    if (!difference.empty()) return "optics " + std::to_string(i) + ", " + difference;
  }
  return {};
}

}  // namespace bench
