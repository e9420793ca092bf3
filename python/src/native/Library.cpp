#include "Library.h"

#include <kalvista/Logger.h>
#include <pthread.h>

#include <clocale>
#include <sstream>

namespace binding {
namespace {

std::mutex& libraryLock() {
  static auto* lock = new std::mutex;  // outlives whatever runs at the end of the process
  return *lock;
}

// What the library has logged. The text is in memory: a descriptor of ours could be closed by the
// process, and its number then be another file's.
std::stringbuf& logText() {
  static auto* text = new std::stringbuf;
  return *text;
}

// The library's log, which is that of this package unless an application has configured its own.
bool logIsOurs() {
  static const bool isOurs = [] {
    brivex::Logger& log = *brivex::Logger::getInstance();
    if (log.configured) return false;
    log.stream.open("/dev/null");  // only a stream that is open is written to
    static_cast<std::ios&>(log.stream).rdbuf(&logText());
    log.conf = brivex::LOGGER_FILE_ON;
    log.configured = true;
    return true;
  }();
  return isOurs;
}

py::object logging(const char* function) {
  return py::module_::import("kalvista._log").attr(function);
}

}  // namespace

NumericLocale::NumericLocale() : before_(std::setlocale(LC_NUMERIC, nullptr)) {
  if (before_ != "C") std::setlocale(LC_NUMERIC, "C");
}

NumericLocale::~NumericLocale() {
  if (before_ != "C") std::setlocale(LC_NUMERIC, before_.c_str());
}

LibraryHeld::LibraryHeld(unsigned int logLevel) : lock_(libraryLock()) {
  if (logIsOurs()) brivex::Logger::getInstance()->fileLevel = logLevel;
}

std::string LibraryHeld::takeLog() {
  std::string lines = logText().str();
  if (!lines.empty()) logText().str({});
  return lines;
}

unsigned int wantedLogLevel() {
  static const py::handle threshold = logging("threshold").release();
  return threshold().cast<unsigned int>();
}

void forwardLog(const std::string& lines) { logging("forward")(decoded(lines)); }

void prepareForForks() {
  wantedLogLevel();  // looked up while the module is imported, so that no two threads do
  pthread_atfork([] { libraryLock().lock(); }, [] { libraryLock().unlock(); },
                 [] { libraryLock().unlock(); });
}

py::str decoded(std::string_view text) {
  const auto size = static_cast<py::ssize_t>(text.size());
  PyObject* decoded = PyUnicode_DecodeUTF8(text.data(), size, "surrogateescape");
  if (decoded == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(decoded);
}

}  // namespace binding
