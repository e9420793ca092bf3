#include <sys/resource.h>

#include <set>

#include "support/Transcript.h"

using Manager = InFolder;
using ardo::IRCalibrationManager;

TEST_F(Manager, Transcript) {
  fs::create_directory_symlink(kSample, "sample");
  const std::unique_ptr<IRCalibrationManager> owned(IRCalibrationManager::getInstance());
  IRCalibrationManager& manager = *owned;
  Commands on;
  on["path"] = [&](auto& a) {
    char path[1100];
    return manager.createConfigFilepath(path, a[0], a[1], a[2], a[3]) ? shown(path) : "false";
  };
  on["setDirs"] = [&](auto& a) {
    manager.setCalibrationDir(a[0]);
    manager.setFormatsDir(a[1]);
    return shown(manager.getCalibrationDir(), manager.getFormatsDir());
  };
  on["check"] = [&](auto& a) {
    return shown(std::unique_ptr<char[]>(manager.checkCalibration(a[0])).get());
  };
  // In a working directory of that length, an empty text stands for a folder of it. The name is
  // cut.
  on["openDeep"] = [&](auto& a) {
    ardo::IRLogger::setVerbosity(ardo::IRLOGGER_OFF, ardo::IRLOGGER_OFF, nullptr);
    std::string deep = folder_ / std::string(250, 'd') + "/";
    deep.resize(a[0], 'd');
    fs::create_directories(deep);
    fs::current_path(deep);
    const bool opened = ardo::SimpleXML().open("", std::string(300, 'n').data(), "r");
    fs::current_path(folder_.path());
    return shown(opened, fs::exists(deep + "/Imager"));
  };
  // Counts when the size is below 0, else fills a list of just that size.
  on["pass"] = [&](auto& a) {
    int size = a[2];
    std::string room(static_cast<std::size_t>(std::max(size, 0)) + 1, '#');
    char* const list = size < 0 ? nullptr : room.data();
    const bool whole = manager.checkCaliFiles(a[0], a[1], list, &size, "Cali-%i.xml", "Cali-%s.dat",
                                              "Kennlinie-%s.prn", "::");
    EXPECT_EQ(room.back(), '#');
    return list != nullptr && size > 0 ? shown(whole, size, list) : shown(whole, size);
  };
  on["copy"] = [&](auto& a) {
    bool whole = false;
    errno = EINTR;  // of a call before
    const auto run = [&] { whole = manager.copyCalibrationFromLocalRepo(a[0], a[1].text); };
    const std::string echo = captured(STDOUT_FILENO, run);
    return echo + shown(whole);
  };
  // There are descriptors for one file only: neither command can start.
  on["copyWithoutPipe"] = [&](auto& a) {
    return shown(inChildProcess([&] {
      const auto next = static_cast<rlim_t>(dup(STDIN_FILENO));
      const rlimit limit{next + 1, next + 1};
      const bool limited = close(static_cast<int>(next)) + setrlimit(RLIMIT_NOFILE, &limit) == 0;
      return !limited || manager.copyCalibrationFromLocalRepo(a[0], a[1].text) ||
             IRCalibrationManager::isOnlineCalibrationRepoAccessible();
    }));
  };
  on["optics"] = [&](auto& a) {
    std::string text;
    for (const ardo::IROptics& optics : *manager.getAvailableOptics(a[0])) {
      text += shown("\n", optics.fov, optics.text);
      for (const auto& range : optics.tempRanges) text += shown(",", range.tMin, range.tMax);
    }
    return text;
  };
  // After the first document, the lines that were in no document before.
  std::set<std::string> known;
  on["generate"] = [&](auto& a) {
    const std::string document = manager.generateConfiguration(a[0]);
    const bool isFirst = known.empty();
    std::string added;
    for (const std::string& line : linesOf(document)) {
      if (known.insert(line).second) added += "\n" + line;
    }
    return isFirst ? document : added;
  };
  runTranscript("sdk/manager/manager.txt", on);
}
