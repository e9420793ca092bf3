// The one way into the library. Its process-wide state is guarded by one lock, and what it logs
// goes to Python's logging.
#ifndef KALVISTA_PYTHON_LIBRARY_H
#define KALVISTA_PYTHON_LIBRARY_H

#include <pybind11/pybind11.h>

#include <mutex>
#include <string>
#include <string_view>

namespace binding {

namespace py = pybind11;

// The library wants numbers with a decimal point; whoever chose another locale gets it back.
class NumericLocale {
 public:
  NumericLocale();
  ~NumericLocale();
  NumericLocale(const NumericLocale&) = delete;
  NumericLocale& operator=(const NumericLocale&) = delete;

 private:
  std::string before_;
};

// While it lives, this thread has the library to itself and other threads have the interpreter. The
// lock is waited for, and given back, without the interpreter: so nobody who has one of them waits
// for the other.
class LibraryHeld {
 public:
  explicit LibraryHeld(unsigned int logLevel);

  // The log lines since the last time.
  std::string takeLog();

 private:
  py::gil_scoped_release interpreter_;
  std::lock_guard<std::mutex> lock_;
  NumericLocale locale_;
};

// Up to which of the library's levels Python's logging asks for messages.
unsigned int wantedLogLevel();
void forwardLog(const std::string& lines);

// Sees to it that a forked process gets a free lock.
void prepareForForks();

// Runs work on the library, without the interpreter. The work must not touch Python's objects.
template <typename Work>
auto withLibrary(const Work& work) {
  const unsigned int logLevel = wantedLogLevel();
  std::string log;
  auto answer = [&] {
    LibraryHeld held(logLevel);
    auto made = work();
    log = held.takeLog();
    return made;
  }();
  if (!log.empty()) forwardLog(log);
  return answer;
}

// Texts of files are bytes; what is no UTF-8 survives the way to Python and back.
py::str decoded(std::string_view text);

}  // namespace binding

#endif  // KALVISTA_PYTHON_LIBRARY_H
