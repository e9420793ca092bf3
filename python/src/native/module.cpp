// The extension module: what the package in src/kalvista is made of. Paths and texts come as bytes.
#include <fcntl.h>
#include <kalvista/IRCalibrationManager.h>
#include <kalvista/version.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <string>
#include <thread>

#include "Library.h"
#include "Reader.h"
#include "Records.h"

namespace binding {
namespace {

bool isRegularFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// None when the file cannot be loaded. The file is looked for first: the library makes the
// directory of a file that it does not find.
py::object load(const std::string& directory, int serial) {
  ConfigCali calibration;
  const bool loaded = withLibrary([&] {
    return isRegularFile(directory + "/Cali-" + std::to_string(serial) + ".xml") &&
           calibration.load(directory.c_str(), serial) == 0;
  });
  if (!loaded) return py::none();
  return calibrationRecord(calibration);
}

py::bytes fileName(int serial, int fov, std::string text, float low, float high,
                   unsigned short framerate) {
  static ConfigCali names;
  std::array<char, 260> name{};
  names.caliFilenameString(serial, fov, text.data(), low, high, framerate, name.data(),
                           static_cast<int>(name.size()));
  return name.data();
}

py::object readConfiguration(const std::string& path) {
  ardo::IRDeviceParams params{};
  const bool read =
      withLibrary([&] { return ardo::IRDeviceParamsReader::readXML(path.c_str(), params); });
  const std::array<std::unique_ptr<char[]>, 3> owned{std::unique_ptr<char[]>(params.opticsText),
                                                     std::unique_ptr<char[]>(params.formatsPath),
                                                     std::unique_ptr<char[]>(params.caliPath)};
  if (!read) return py::none();
  return configurationRecord(params);
}

py::str defaultDocument(unsigned long serial, const std::string& directory) {
  const std::string document = withLibrary([&] {
    ardo::IRCalibrationManager& manager = *ardo::IRCalibrationManager::getInstance();
    const std::string before = manager.getCalibrationDir();
    manager.setCalibrationDir(directory.c_str());
    std::string text = manager.generateConfiguration(serial);
    manager.setCalibrationDir(before.c_str());
    return text;
  });
  return decoded(document);
}

// Where a thread may have no working directory of its own, that of the process is brought back.
void searchInOwnDirectory(unsigned long& serial) {
  const bool own = unshare(CLONE_FS) == 0;
  const int before = own ? -1 : open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (!ardo::IRCalibrationManager::getInstance()->findSerial(serial)) serial = 0;
  if (before < 0) return;
  if (fchdir(before) != 0) serial = 0;
  close(before);
}

// 0 when no camera is attached. The library searches in a working directory that it changes, which
// the threads of a process share.
unsigned long findSerial(unsigned long wanted) {
  return withLibrary([wanted] {
    unsigned long serial = wanted;
    std::thread([&serial] { searchInOwnDirectory(serial); }).join();
    return serial;
  });
}

std::string version() {
  return std::to_string(KALVISTA_VERSION_MAJOR) + "." + std::to_string(KALVISTA_VERSION_MINOR) +
         "." + std::to_string(KALVISTA_VERSION_PATCH);
}

}  // namespace
}  // namespace binding

PYBIND11_MODULE(_kalvista, module) {
  using namespace binding;
  prepareForForks();
  module.attr("version") = version();
  module.def("register_records", &registerRecords, py::arg("classes"));
  module.def("load", &load, py::arg("directory"), py::arg("serial"));
  module.def("file_name", &fileName, py::arg("serial"), py::arg("fov"), py::arg("text"),
             py::arg("low"), py::arg("high"), py::arg("frame_rate"));
  module.def("read_configuration", &readConfiguration, py::arg("path"));
  module.def("default_document", &defaultDocument, py::arg("serial"), py::arg("directory"));
  module.def("find_serial", &findSerial, py::arg("serial"));
  py::class_<Reader>(module, "Reader")
      .def(py::init<const std::string&, const std::string&>(), py::arg("path"), py::arg("root"))
      .def_property_readonly("opened", &Reader::opened)
      .def_property_readonly("has_root", &Reader::hasRoot)
      .def_property_readonly("length", &Reader::length)
      .def("first_child", &Reader::firstChild, py::arg("parent"), py::arg("name"))
      .def("count", &Reader::count, py::arg("parent"), py::arg("name"))
      .def("text", &Reader::text, py::arg("element"))
      .def("get_int", &Reader::integer, py::arg("parent"), py::arg("name"))
      .def("get_float", &Reader::real, py::arg("parent"), py::arg("name"));
}
