// Makes the frozen records of the Python package from the library's.
#ifndef KALVISTA_PYTHON_RECORDS_H
#define KALVISTA_PYTHON_RECORDS_H

#include <kalvista/Cali.h>
#include <kalvista/IRDeviceParams.h>
#include <pybind11/pybind11.h>

namespace binding {

// Takes the package's record classes; called once, by the package, before any record is made.
void registerRecords(const pybind11::dict& classes);

pybind11::object calibrationRecord(const ConfigCali& calibration);
pybind11::object configurationRecord(const ardo::IRDeviceParams& params);

}  // namespace binding

#endif  // KALVISTA_PYTHON_RECORDS_H
