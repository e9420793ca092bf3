// What holds for every public call: what it refuses, and that it stays whole without memory.
#include <new>
#include <set>

#include "support/Transcript.h"
#include "support/UsbTree.h"

#if defined(__SANITIZE_ADDRESS__)
#define OWN_NEW
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OWN_NEW
#endif
#endif

namespace {

int untilFailure = -1;  // allocations that succeed first; below 0, all do
bool failsOnce = true;
long blocks = 0;  // that are held, as far as they are counted: a sanitizer does so itself

bool failsNow() {
  if (untilFailure < 0) return false;
  if (untilFailure > 0) return --untilFailure, false;
  if (failsOnce) untilFailure = -1;
  errno = ENOMEM;
  return true;
}

}  // namespace

// What the C library takes for itself fails as well, but under the sanitizer, which needs its own.
#ifdef OWN_NEW
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return failsNow() ? nullptr : std::malloc(size);
}
void* operator new(std::size_t size) {
  void* const block = operator new(size, std::nothrow);
  return block != nullptr ? block : throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept { std::free(block); }
#else
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

static void* counted(void* block) {
  blocks += block != nullptr ? 1 : 0;
  return block;
}
void* malloc(std::size_t size) { return counted(failsNow() ? nullptr : __libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }
void* realloc(void* block, std::size_t size) {
  void* const moved = __libc_realloc(block, size);
  return block == nullptr ? counted(moved) : moved;
}
void free(void* block) {
  blocks -= block != nullptr ? 1 : 0;
  __libc_free(block);
}
}
#endif

namespace {

using ardo::IRCalibrationManager;
// A camera, its calibration of two optics, a configuration, and a downloader that copies.
class Interface : public testing::Test {
 protected:
  Interface() {
    if (hasTree_) usb::attach("1-1", usb::camera("7"));
    fs::current_path(folder_.path());
    fs::create_directory("from");
    fs::create_directory("to");
    const std::string optics = "<OpticsDef><Text>" + long_ + "</Text>" + kFiles + "</OpticsDef>";
    for (const char* name : {"Cali-7.xml", "from/Cali-8.xml"}) {
      writeFile(name, "<CaliData>\n<Temperature><Optics>" + optics + optics +
                          "</Optics></Temperature>\n</CaliData>");
    }
    writeFile("from/Cali-8-0-" + long_ + "-0-77-27.dat", "");
    writeFile("x.xml", "<imager>\n<optics_text>" + long_ + "</optics_text><calipath>" + long_ +
                           "</calipath><formatspath>" + long_ + "</formatspath>\n</imager>");
    writeFile("broken.xml", "<imager>\n" + std::string(300, 'w') + "<!-- a\n</imager>");
    writeFile("links", "<DownloadLinks>\n<Imager><CaliData><Links><string>" + long_ +
                           "</string></Links></CaliData></Imager>\n</DownloadLinks>");
    fs::permissions(writeFile("wget",
                              "#!/bin/sh\n[ \"$3\" = /tmp/downloadlinks.xml ] && exec cp links $3\n"
                              "cp Cali-7.xml \"$3\" 2> wget.log"),
                    fs::perms::all);
    setenv("PATH", (folder_.path() + ":" + getenv("PATH")).c_str(), 1);
  }
  ~Interface() override { delete IRCalibrationManager::_this; }

  // The manager as it is at the start, with nothing loaded.
  static IRCalibrationManager& fresh(const char* directory = ".") {
    delete std::exchange(ConfigCali::_this, nullptr);
    IRCalibrationManager::getInstance()->setCalibrationDir(directory);
    return *IRCalibrationManager::getInstance();
  }

  static constexpr const char* kFiles =
      "<SamplePointCali>true</SamplePointCali><TempRanges><TemperatureRange><TempHi>77</TempHi>"
      "<Framerates><Framerate><FR>27</FR></Framerate></Framerates></TemperatureRange></TempRanges>";
  const std::string long_ = std::string(40, 'l');  // longer than a string holds without the heap
  char x_[2] = "x";
  // A machine that is not the test's own shows no camera, and may have no default route.
  const bool hasTree_ = usb::makeTree();
  const bool isOnline_ = IRCalibrationManager::isOnlineCalibrationRepoAccessible();
  TemporaryFolder folder_;
};

long taken(char* text) {
  const std::unique_ptr<char[]> owned(text);
  return text != nullptr ? static_cast<long>(std::strlen(text)) : -1;
}

long taken(bool (ardo::SimpleXML::*get)(char**) const, const ardo::SimpleXML& xml) {
  char* text = nullptr;
  return (xml.*get)(&text) == (text != nullptr) ? taken(text) : -2;
}

// With null, empty and impossible arguments each call gives its failure, changes nothing, and says
// why where it has a way to; so it does in a working directory that is gone.
TEST_F(Interface, Refusals) {
  const auto withError = [](auto result) { return std::pair<long, int>(result, errno); };
  const auto mkDir = [&](const char* path) { return withError(ardo::mkDir(path)); };
  char buffer[1100];
  const auto workingDirectory = [&](char* to, short size) {
    return withError(ardo::getFolderPath(to, size) != nullptr);
  };
  using Result = std::pair<long, int>;
  EXPECT_EQ(mkDir(nullptr), Result(-1, EFAULT));
  EXPECT_EQ(mkDir(""), Result(-1, ENOENT));
  EXPECT_EQ(mkDir("to"), Result(-1, EEXIST));
  EXPECT_EQ(workingDirectory(nullptr, 260), Result(0, EINVAL));
  EXPECT_EQ(workingDirectory(buffer, 0), Result(0, EINVAL));
  EXPECT_EQ(workingDirectory(buffer, 1), Result(0, ERANGE));

  ardo::SimpleXML xml;
  EXPECT_TRUE(xml.open("x.xml", "imager") && xml.setNode());
  char* text = x_;
  const char* const none = nullptr;
  const auto refusedByXml = [&] {
    return shown(xml.open(none, "r"), xml.open("x.xml", none), xml.open(none, x_, "r"),
                 xml.open(".", nullptr, "r"), xml.open(".", x_, none), xml.setNode(none),
                 xml.setNode(none, 0), xml.setNode("calipath", -1), xml.getNode(nullptr),
                 xml.getInt(none, nullptr), xml.getInt("calipath", nullptr),
                 xml.getLong("calipath", nullptr), xml.getFloat("calipath", nullptr),
                 xml.getString("calipath", nullptr), xml.getString(none, &text));
  };
  const auto falses = [](int count) {
    std::string all = "false";
    while (--count > 0) all += " false";
    return all;
  };
  EXPECT_EQ(refusedByXml(), falses(15));
  EXPECT_EQ(shown(xml.getNodeCount(none), xml.getKey(none, 0, 9, true), xml.depth, text == nullptr,
                  taken(&ardo::SimpleXML::getNode, xml)),
            "0 -1 0 true " + shown(xml.length));

  ardo::IRDeviceParams params{};
  EXPECT_EQ(shown(ardo::IRDeviceParamsReader::readXML(none, params),
                  ardo::IRDeviceParamsReader::readXMLC("", params)),
            falses(2));

  ConfigCali cali;
  OPTICS optics{30, nullptr};
  Range range{0, 250};
  OPTICS* const noOptics = nullptr;
  Range* const noRange = nullptr;
  unsigned short rate = 9;
  EXPECT_EQ(
      shown(cali.load(none, 7), cali.getOpticsIndex(noOptics), cali.getOptics(-1),
            cali.getOptics(1), cali.getTempRangeCount(noOptics),
            cali.getTempRangeIndex(noOptics, &range), cali.getTempRangeIndex(&optics, noRange),
            cali.getTempRange(noOptics, 0), cali.getTempRange(&optics, -1),
            cali.getExtendedTempRange(noOptics, 0), cali.getExtendedTempRange(&optics, 3),
            cali.getTempRangeOverAll(noOptics), cali.getFramerateCount(noOptics, &range),
            cali.getFramerateCount(&optics, noRange), cali.getFramerateIndex(&optics, noRange, 9),
            cali.getFramerate(&optics, noRange, 0), cali.checkFramerate(noOptics, &range, rate)),
      "2147942405 -1 0 0 -1 -1 -1 0 0 0 0 0 -1 -1 -1 0 true");
  EXPECT_EQ(shown(cali.caliFilenameString(1, 1, nullptr, 0, 0, 0, nullptr, 9),
                  cali.caliFilenameString(1, 1, nullptr, 0, 0, 0, buffer, 0),
                  cali.caliFilenameString(1, 1, nullptr, noRange, 0, buffer, 9)),
            falses(3));

  IRCalibrationManager& manager = fresh("to");
  manager.setCalibrationDir(nullptr);
  manager.setFormatsDir(nullptr);
  EXPECT_EQ(shown(manager.getCalibrationDir(), manager.getFormatsDir()),
            "to /usr/share/libkalvista");
  int size = 9;
  const auto checkFiles = [&](int* to, const char* a, const char* b, const char* c, const char* d) {
    return manager.checkCaliFiles("to", 7, nullptr, to, a, b, c, d);
  };
  EXPECT_EQ(shown(manager.createConfigFilepath(nullptr, "to", 9, "", ""),
                  manager.createConfigFilepath(buffer, none, 9, "", ""),
                  manager.createConfigFilepath(buffer, "to", 0, "", ""),
                  manager.createConfigFilepath(buffer, "to", 9, none, ""),
                  manager.createConfigFilepath(buffer, "to", 9, "", none),
                  checkFiles(nullptr, "a", "b", "c", "d"), checkFiles(&size, none, "b", "c", "d"),
                  checkFiles(&size, "a", none, "c", "d"), checkFiles(&size, "a", "b", none, "d"),
                  checkFiles(&size, "a", "b", "c", none), manager.downloadCalibration(0)),
            falses(11));
  ardo::_checkCaliFilesHelper("to", nullptr, "%s", nullptr, &size);
  ardo::_checkCaliFilesHelper("to", x_, none, nullptr, &size);
  ardo::_checkCaliFilesHelper("to", x_, "%s", nullptr, nullptr);
  ardo::_checkCaliFilesHelper(nullptr, x_, "%s", nullptr, &size);  // counts the name and its end
  int noRoom = 0;
  char* const list = reinterpret_cast<char*>(8);  // neither read nor written
  ardo::_checkCaliFilesHelper("to", x_, "%s", list, &noRoom);
  manager.checkCaliFiles("to", 7, list, &noRoom, "", "", "", "");
  EXPECT_EQ(shown(size, noRoom, brivex::W2C(none) == nullptr), "11 0 true");
  char listed[9] = "ab";
  for (int room : {4, 5}) {
    ardo::_checkCaliFilesHelper("to", x_, "%s", listed, &room);
    EXPECT_EQ(shown(listed, room), room == 3 ? "ab 3" : "abx; 5");
  }

  fs::create_directory("gone");
  fs::current_path("gone");
  fs::remove(folder_ / "gone");
  EXPECT_EQ(workingDirectory(buffer, 260), Result(0, ENOENT));
  EXPECT_EQ(mkDir("x"), Result(-1, ENOENT));
  EXPECT_EQ(shown(manager.createConfigFilepath(buffer, "", 260, "x", ""), xml.open("x.xml", "r"),
                  xml.open("", x_, "r"), ardo::IRDeviceParamsReader::readXML("x.xml", params)),
            falses(4));
  EXPECT_EQ(shown(cali.load("", 7), fresh("").getAvailableOptics(7)->size(),
                  taken(fresh("").checkCalibration(7))),
            "2147942405 1 11");
}

// Descriptor 0 is one like others, and an error from before is nobody's.
TEST_F(Interface, WithoutStandardInput) {
  writeFile("empty", "");
  EXPECT_TRUE(inChildProcess([] {
    close(0);
    ardo::SimpleXML xml;
    errno = EINTR;
    return xml.open("empty", "r") && (errno = EWOULDBLOCK) != 0 && xml.open("x.xml", "imager") &&
           xml.hasRoot() && taken(fresh("from").checkCalibration(8)) == -1 &&
           open("/dev/null", O_RDONLY) == 0;
  }));
}

// One block fails, or all from one on, for each block that a call asks for: the call gives its
// result or a failure, and the same as ever afterwards.
TEST_F(Interface, CallsWithoutMemory) {
  using brivex::Logger;
  ardo::SimpleXML xml;
  OPTICS key{0, nullptr};
  const std::vector<std::tuple<const char*, std::set<long>, std::function<long()>>> rows = {
      {"Logger",
       {0},
       [&] {
         Logger::releaseInstance();
         Logger* const log = Logger::getInstance();
         if (log == nullptr) return 0;
         log->configure(long_, brivex::LOGGER_FILE_ON, 3, 3);
         log->print(0, long_, 1, long_);
         return log->configured ? log->stream.is_open() + 2 * log->stream.good() : 0;
       }},
      {"setVerbosity",
       {0, 1},
       [&] {
         Logger::releaseInstance();
         ardo::IRLogger::setVerbosity(ardo::IRLOGGER_OFF, ardo::IRLOGGER_DEBUG, long_.c_str());
         return Logger::getInstance() != nullptr ? Logger::getInstance()->conf : 0;
       }},
      {"open", {0}, [&] { return xml.open("x.xml", "imager") && xml.setNode(); }},
      {"open of a broken file",
       {},
       [] {
         Logger::releaseInstance();
         return ardo::SimpleXML().open("broken.xml", "imager");
       }},
      {"open in a directory", {0}, [&] { return xml.open(".", x_, "imager") && xml.setNode(); }},
      {"getNode", {-1}, [&] { return taken(&ardo::SimpleXML::getNode, xml); }},
      {"getString",
       {-1},
       [&] {
         char* text = nullptr;
         xml.getString("calipath", &text);
         return xml.depth == 0 ? taken(text) : 0;
       }},
      {"readXML",
       {-3},
       [] {
         ardo::IRDeviceParams p;
         const bool done = ardo::IRDeviceParamsReader::readXML("x.xml", p);
         return done + taken(p.opticsText) + taken(p.caliPath) + taken(p.formatsPath);
       }},
      {"IRDeviceParams_Print", {}, [] { return ardo::IRDeviceParams_Print({}), 0; }},
      {"ConfigCali",
       {0, 1, 2},
       [&] {
         ConfigCali own;
         const std::unique_ptr<OPTICS> optics(own.getOptics(0));
         const std::unique_ptr<Range> range(own.getTempRangeOverAll());
         own.load("from", 8);
         return (optics ? 1 : 0) + (own.load(".", 7) == 0 && own.getOpticsIndex(&key) < 0 ? 2 : 0);
       }},
      {"ConfigCali::getInstance",
       {0},
       [] {
         delete std::exchange(ConfigCali::_this, nullptr);
         return ConfigCali::getInstance() != nullptr;
       }},
      {"IRCalibrationManager",
       {0, 1, 2},
       [&] {
         delete IRCalibrationManager::_this;
         IRCalibrationManager own;
         own.setCalibrationDir(".");
         own.downloadCalibration(0);
         const bool generated = !own.generateConfiguration(1).empty();
         return (generated ? 1 : 0) + (own.getAvailableOptics(7) != nullptr ? 2 : 0);
       }},
      {"IRCalibrationManager::getInstance",
       {0},
       [] {
         delete IRCalibrationManager::_this;
         return IRCalibrationManager::getInstance() != nullptr;
       }},
      {"getAvailableOptics", {0, 1}, [&] { return fresh().getAvailableOptics(7)->size(); }},
      {"generateConfiguration",
       {0, 1},
       [&] {
         const std::string text = fresh().generateConfiguration(7);
         return text.empty() ? 0 : text.find("<max>77<") == std::string::npos ? 1 : 2;
       }},
      {"checkCaliFiles",
       {0, 12},
       [&] {
         int size = 5;
         fresh().checkCaliFiles(".", 7, nullptr, &size, "Cali-%i.xml", "%s", "%s", ";");
         return size;
       }},
      {"checkCalibration",
       {-1 - ENOMEM, 11},
       [&] {
         errno = 0;
         const long length = taken(fresh().checkCalibration(7));
         return length - errno;
       }},
      {"copyCalibrationFromLocalRepo",
       {0},
       [&] { return fresh("to").copyCalibrationFromLocalRepo(8, "from"); }},
      {"downloadTarget", {0}, [&] { return IRCalibrationManager::downloadTarget(x_, "7", "to"); }},
      {"downloadCalibration",
       {0},
       [&] {
         unlink("to/Cali-7.xml");
         return fresh("to").downloadCalibration(7) && access("to/Cali-7.xml", F_OK) == 0;
       }},
      {"findSerial",
       {0},
       [&] {
         unsigned long serial = 0;
         const bool found = fresh().findSerial(serial);
         if (chdir(folder_.path().c_str()) != 0 || found != (serial != 0)) return -1;
         return found || !hasTree_ ? 1 : 0;
       }},
      {"isOnlineCalibrationRepoAccessible",
       {-1},
       [&] { return IRCalibrationManager::isOnlineCalibrationRepoAccessible() - isOnline_; }},
  };
  std::string wrong;
  captured(STDOUT_FILENO, [&] {
    for (const auto& [name, failures, call] : rows) {
      const long expected = call();
      const long held = blocks;
      const auto failsAt = [&, &name = name, &call = call, &failures = failures](int n, bool once) {
        std::tie(untilFailure, failsOnce) = std::tie(n, once);
        const long result = call();
        const bool failed = std::exchange(untilFailure, -1) < 0;
        const bool isFine = result == expected || failures.count(result) == 1;
        const long after = call();
        const long kept = blocks - held;
        if (!isFine || after != expected || failures.count(expected) == 1 || kept != 0) {
          wrong +=
              shown(name, n, once, "gave", result, "then", after, "for", expected, "kept", kept);
        }
        return failed;
      };
      for (int block = 0; failsAt(block, true); ++block) failsAt(block, false);
    }
  });
  EXPECT_EQ(wrong, "");
}

}  // namespace
