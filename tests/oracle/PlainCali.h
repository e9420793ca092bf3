// The calibration loader written down step by step on the plain reader. The model is a text, one
// "field value" a line, so that a difference can be read off.
#ifndef KALVISTA_TESTS_ORACLE_PLAIN_CALI_H
#define KALVISTA_TESTS_ORACLE_PLAIN_CALI_H

#include <kalvista/Cali.h>

#include <string>

namespace oracle {

struct LoadedCali {
  unsigned int status;
  std::string model;
};

/// Loads a calibration file into an initial model.
LoadedCali loadPlainly(const std::string& file);

/// Writes down the library's model in the same form.
std::string describe(const ConfigCali& cali);

}  // namespace oracle

#endif  // KALVISTA_TESTS_ORACLE_PLAIN_CALI_H
