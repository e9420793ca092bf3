#include "Library.h"

#include <kalvista/Logger.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>

namespace binding {
namespace {

std::mutex& libraryLock() {
  static auto* lock = new std::mutex;  // outlives whatever runs at the end of the process
  return *lock;
}

constexpr int kNone = -1;

// The file that the library logs to: it has no name and lives in memory.
int logFile = kNone;

void openLog() {
  logFile = memfd_create("kalvista log", MFD_CLOEXEC);
  const std::string name = "/proc/self/fd/" + std::to_string(logFile);
  brivex::Logger& log = *brivex::Logger::getInstance();
  log.filename = name;  // the name in use is opened as it is, without the time
  log.configure(name, brivex::LOGGER_FILE_ON, 0, 0);
}

std::string readLog() {
  struct stat status {};
  if (fstat(logFile, &status) != 0 || status.st_size == 0) return {};
  std::string lines(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t count = pread(logFile, lines.data(), lines.size(), 0);
  lines.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  if (ftruncate(logFile, 0) != 0) lines.clear();
  return lines;
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
  if (logFile == kNone) openLog();
  brivex::Logger::getInstance()->fileLevel = logLevel;
}

std::string LibraryHeld::takeLog() { return readLog(); }

unsigned int wantedLogLevel() {
  static const py::handle threshold = logging("threshold").release();
  return threshold().cast<unsigned int>();
}

void forwardLog(const std::string& lines) { logging("forward")(decoded(lines)); }

void prepareForForks() {
  wantedLogLevel();  // looked up while the module is imported, so that no two threads do
  pthread_atfork([] { libraryLock().lock(); }, [] { libraryLock().unlock(); },
                 [] {
                   libraryLock().unlock();
                   logFile = kNone;  // the parent's goes on there, and closes with the next log
                 });
}

py::str decoded(std::string_view text) {
  const auto size = static_cast<py::ssize_t>(text.size());
  PyObject* decoded = PyUnicode_DecodeUTF8(text.data(), size, "surrogateescape");
  if (decoded == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(decoded);
}

}  // namespace binding
