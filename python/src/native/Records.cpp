#include "Records.h"

#include <array>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Library.h"

namespace binding {
namespace {

constexpr float kNotExtended = -100.0F;  // the model's value of a limit that the file does not give

// What makes a Python object, or has raised an exception instead.
py::object made(PyObject* object) {
  if (object == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(object);
}

template <typename Number>
py::object number(Number value) {
  if constexpr (std::is_same_v<Number, bool>) return made(PyBool_FromLong(value ? 1 : 0));
  if constexpr (std::is_floating_point_v<Number>) return made(PyFloat_FromDouble(value));
  if constexpr (std::is_unsigned_v<Number>) return made(PyLong_FromUnsignedLong(value));
  return made(PyLong_FromLong(static_cast<long>(value)));
}

py::handle interned(const char* name) { return PyUnicode_InternFromString(name); }

// A record class with its fields. It refuses assignment to its objects; we fill them behind its
// back, which also spares its constructor.
class RecordClass {
 public:
  // Described by the class itself, and its fields in the order in which make() gets their values.
  void take(const py::dict& classes, const char* name) {
    const py::tuple described = classes[name];
    type_ = py::object(described[0]).release();
    for (const py::handle field : py::tuple(described[1])) {
      fields_.push_back(interned(field.cast<std::string>().c_str()));
    }
  }

  template <typename... Values>
  py::object make(const Values&... values) const {
    if (sizeof...(values) != fields_.size()) throw py::type_error("fields of a record");
    auto* type = reinterpret_cast<PyTypeObject*>(type_.ptr());
    py::object record = made(type->tp_alloc(type, 0));
    auto field = fields_.begin();
    (set(record, *field++, values), ...);
    return record;
  }

 private:
  static void set(const py::object& record, py::handle field, const py::object& value) {
    if (PyObject_GenericSetAttr(record.ptr(), field.ptr(), value.ptr()) != 0) {
      throw py::error_already_set();
    }
  }

  py::handle type_;
  std::vector<py::handle> fields_;
};

struct {
  RecordClass constants, range, optics, calibration, configuration;
} classes;

template <typename Record>
struct Key {
  const char* name;
  py::object (*value)(const Record&);
};

template <auto Field, typename Record>
py::object valueOf(const Record& record) {
  return number(record.*Field);
}

constexpr std::array<Key<MainSection>, 24> kMainKeys{{
    {"TecA", valueOf<&MainSection::TecA>},
    {"TecB", valueOf<&MainSection::TecB>},
    {"TecC", valueOf<&MainSection::TecC>},
    {"TecD", valueOf<&MainSection::TecD>},
    {"TempTEC_Step", valueOf<&MainSection::TempTEC_Step>},
    {"TempTECOffset", valueOf<&MainSection::TempTECOffset>},
    {"TempTECGain", valueOf<&MainSection::TempTECGain>},
    {"TempFlagOffset", valueOf<&MainSection::TempFlagOffset>},
    {"TempChipFactor", valueOf<&MainSection::TempChipFactor>},
    {"TempChipOffset", valueOf<&MainSection::TempChipOffset>},
    {"TempBoxOffset", valueOf<&MainSection::TempBoxOffset>},
    {"TempOpticsOffset", valueOf<&MainSection::TempOpticsOffset>},
    {"TempProcOffset", valueOf<&MainSection::TempProcOffset>},
    {"TempHouseOffset", valueOf<&MainSection::TempHouseOffset>},
    {"PifInOffset", valueOf<&MainSection::PifInOffset>},
    {"PifInGain", valueOf<&MainSection::PifInGain>},
    {"PifOutOffset", valueOf<&MainSection::PifOutOffset>},
    {"PifOutGain", valueOf<&MainSection::PifOutGain>},
    {"AddedOffset", valueOf<&MainSection::AddedOffset>},
    {"BindTempChipToTempFlagOffset", valueOf<&MainSection::BindTempChipToTempFlagOffset>},
    {"FlagCycles", valueOf<&MainSection::FlagCycles>},
    {"FlagCycles_Ignore", valueOf<&MainSection::FlagCycles_Ignore>},
    {"AlphaLowTemp", valueOf<&MainSection::AlphaLowTemp>},
    {"AlphaLowFactor", valueOf<&MainSection::AlphaLowFactor>},
}};

constexpr std::array<Key<TableParams>, 6> kTableKeys{{
    {"Normalize", valueOf<&TableParams::Normalize>},
    {"T1", valueOf<&TableParams::T1>},
    {"T3", valueOf<&TableParams::T3>},
    {"E1", valueOf<&TableParams::E1>},
    {"E3", valueOf<&TableParams::E3>},
    {"Lambda", valueOf<&TableParams::Lambda>},
}};

// The keys are made once: every mapping of the same kind shares them.
template <typename Record, std::size_t Count>
py::object mapping(const Record& record, const std::array<Key<Record>, Count>& keys) {
  static const std::vector<py::handle> names = [&keys] {
    std::vector<py::handle> all;
    for (const Key<Record>& key : keys) all.push_back(interned(key.name));
    return all;
  }();
  const py::dict values;
  for (std::size_t i = 0; i < Count; ++i) {
    if (PyDict_SetItem(values.ptr(), names[i].ptr(), keys[i].value(record).ptr()) != 0) {
      throw py::error_already_set();
    }
  }
  return classes.constants.make(values);
}

template <typename Record, typename Make>
py::object tupleOf(Record* const* records, int count, const Make& make) {
  py::tuple all(count);
  for (int i = 0; i < count; ++i) {
    PyTuple_SET_ITEM(all.ptr(), i, make(*records[i]).release().ptr());
  }
  return std::move(all);
}

py::object limit(float value) { return value == kNotExtended ? py::none() : number(value); }

py::object rangeRecord(const TemperatureRange& range) {
  return classes.range.make(number(range.TempLo), number(range.TempHi), limit(range.TempLoExt),
                            limit(range.TempHiExt), number(range.Decimal),
                            tupleOf(range.framerates, range.framerateCount, number<FR>),
                            mapping(*range.tableParams, kTableKeys));
}

py::object opticsRecord(const OpticsDef& optics) {
  return classes.optics.make(number(optics.FOV), decoded(optics.Text != nullptr ? optics.Text : ""),
                             number(optics.SerNo), number(optics.SamplePointCali),
                             tupleOf(optics.ranges, optics.rangeCount, rangeRecord));
}

py::object textOrNone(const char* text) {
  return text != nullptr ? py::object(decoded(text)) : py::none();
}

}  // namespace

void registerRecords(const py::dict& all) {
  classes.constants.take(all, "Constants");
  classes.range.take(all, "Range");
  classes.optics.take(all, "Optics");
  classes.calibration.take(all, "Calibration");
  classes.configuration.take(all, "Configuration");
}

py::object calibrationRecord(const ConfigCali& calibration) {
  const OpticsList& list = *calibration.opticsList;
  return classes.calibration.make(number(calibration.serial),
                                  mapping(*calibration.mainSection, kMainKeys),
                                  tupleOf(list.items, list.count, opticsRecord));
}

py::object configurationRecord(const ardo::IRDeviceParams& params) {
  return classes.configuration.make(
      number(params.serial), number(params.fov), textOrNone(params.opticsText),
      textOrNone(params.formatsPath), textOrNone(params.caliPath), number(params.tMin),
      number(params.tMax), number(params.framerate), number(params.videoFormatIndex),
      number(params.bispectral), number(params.average), number(params.autoFlag != 0),
      number(params.minInterval), number(params.maxInterval), number(params.pifInMode),
      number(params.pifOutMode), number(params.pifOutVoltage), number(params.tChipMode),
      number(params.tChipFixedValue), number(params.focus));
}

}  // namespace binding
