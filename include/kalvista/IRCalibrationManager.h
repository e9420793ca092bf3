/// @file
/// Where calibration files live, and how they are made complete.
#ifndef KALVISTA_IRCALIBRATION_MANAGER_H
#define KALVISTA_IRCALIBRATION_MANAGER_H

#include <kalvista/export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ardo {

/// Temperature range in whole degrees, cut toward zero.
struct IRTempRange {
  std::int32_t tMin;  ///< lower limit, in °C
  std::int32_t tMax;  ///< upper limit, in °C
};

/// Optics that a camera can be run with.
struct IROptics {
  std::int32_t fov = 0;                 ///< field of view, in degrees
  std::vector<IRTempRange> tempRanges;  ///< its temperature ranges, in the calibration's order
  std::string text;                     ///< its text; empty when it has none
};

/// Keeper of the calibration files of cameras.
///
/// One instance serves the whole process. It knows two directories: the calibration directory, with
/// the files of the cameras, and the formats directory, which it writes into configurations.
///
/// Thread context of all members: **one thread at a time**; those that start commands return when
/// the commands have ended.
class KALVISTA_API IRCalibrationManager {
 public:
  /// Gives the one instance and makes it, with the default directories, when there is none.
  /// @return the instance, valid until its destructor runs; null when there is none and no memory
  ///         for it
  static IRCalibrationManager* getInstance();

  /// Makes an instance of its own. Applications use getInstance(). What there is no memory for is
  /// null, and calls that need it fail.
  IRCalibrationManager();
  /// Releases the directories and the optics list. **Whichever instance is destroyed, the process's
  /// is forgotten**: the next getInstance() makes a new one, and who holds the former one destroys
  /// it.
  ~IRCalibrationManager();
  IRCalibrationManager(const IRCalibrationManager&) = delete;
  IRCalibrationManager& operator=(const IRCalibrationManager&) = delete;

  /// Sets the calibration directory; the default is "/usr/share/libkalvista/cali".
  /// @param dir directory, of which at most 260 characters are kept; null is ignored
  void setCalibrationDir(const char* dir);
  /// Sets the formats directory; the default is "/usr/share/libkalvista".
  /// @param dir directory, of which at most 260 characters are kept; null is ignored
  void setFormatsDir(const char* dir);
  /// Gives the calibration directory.
  /// @return the manager's own zero-terminated text; valid until the manager is destroyed
  char* getCalibrationDir() const;
  /// Gives the formats directory.
  /// @return the manager's own zero-terminated text; valid until the manager is destroyed
  char* getFormatsDir() const;

  /// Forms the path of a file in a directory, and makes the directory (its last component only)
  /// when it does not exist. A directory that cannot be made is not reported: the file will be
  /// found missing.
  /// @param path receives the zero-terminated path. Each piece is cut to `size` characters, their
  ///             sum is not: the pieces must fit. With an empty directory the working directory
  ///             alone may take 2 x `size` + 1 bytes.
  /// @param dir directory; empty means "Imager" below the working directory
  /// @param size bound of each piece, in characters
  /// @param name file name
  /// @param ext extension with its dot; may be empty
  /// @return false when the working directory cannot be had, `size` is below 1, or a pointer is
  ///         null
  bool createConfigFilepath(char* path, const char* dir, short size, const char* name,
                            const char* ext);

  /// Finds an attached camera in the kernel's USB device tree.
  ///
  /// **The working directory of the process becomes "/sys/bus/usb/devices"** and stays so:
  /// applications that call this resolve their relative paths before.
  /// Thread context: **process-wide**.
  /// @param serial 0 for any supported camera (the first one listed wins), else the serial number
  ///               that is looked for. Receives the number found; 0 when no camera matches;
  ///               untouched when the device tree cannot be read.
  /// @return true when a camera was found; false when no camera matches; false with an ERROR line
  ///         when the device tree cannot be read
  bool findSerial(unsigned long& serial);

  /// Lists the optics of a camera with their temperature ranges.
  ///
  /// Loads the calibration of the camera when it is not loaded. **When that fails, the list is that
  /// of the initial model** (see ConfigCali).
  /// @param serial serial number; 0 gives the last list again
  /// @return the manager's own list, empty without memory for it; valid, at the same address, until
  ///         the manager is destroyed; its content until the next call with a serial number
  std::vector<IROptics>* getAvailableOptics(unsigned long serial);

  /// Writes the text of a default device configuration document. The field of view and temperature
  /// range of the calibration's first optics stand in a comment, ready to be put to use.
  /// @param serial serial number of the camera
  /// @return the document, lines ending with a line feed; with the field of view 0 and the range
  ///         -20 to 100 when the calibration cannot be read; empty without memory for it
  std::string generateConfiguration(unsigned long serial);

  /// Copies the calibration files of a camera from a folder tree into the calibration directory,
  /// with `find` and `cp`, and echoes the command to standard output.
  ///
  /// The paths go to the command interpreter **as they are, without quotes**: blanks split them,
  /// and the interpreter acts on its special characters.
  /// @param serial serial number of the camera; files of serials that begin with the same digits
  ///               are copied as well
  /// @param repoPath folder that is searched
  /// @return true when no file of the calibration is missing afterwards; false when one is, the
  ///         command cannot be started, or there is no memory
  bool copyCalibrationFromLocalRepo(unsigned long serial, std::string repoPath);

  /// Tells whether the kernel's routing table has exactly one default route, with `/sbin/route`.
  /// @return true when it has exactly one; false with none, with several, or without the command
  static bool isOnlineCalibrationRepoAccessible();

  /// Makes the calibration of a camera complete from the online repository, in at most three
  /// passes: the first typically brings the XML file, which names the others.
  /// @param serial serial number of the camera
  /// @return true when nothing is missing, **and after the third pass whatever is missing** (ask
  ///         checkCalibration()); false with an ERROR line when the calibration directory cannot be
  ///         written or the serial is 0; false with an INFO line when a pass fails; false when
  ///         there is no memory
  bool downloadCalibration(unsigned long serial);

  /// Fetches files of a camera from the online repository with `wget`.
  ///
  /// A try counts as started when the command interpreter could be run, whatever became of it.
  /// Texts that the command interpreter or the downloader would act on are refused: such a try
  /// counts as one that could not be started. The links document is kept at
  /// "/tmp/downloadlinks.xml" meanwhile, for all processes of the machine.
  /// @param fileList file names, separated by ";"; without one (null or empty), the links document
  ///                 is fetched all the same, and the result is false
  /// @param serialText serial number in decimal; **reaches the command as it stands**, in double
  ///                   quotes: only digits are safe
  /// @param targetDir directory that the files are stored in; goes to the command interpreter as it
  ///                  is
  /// @return true when at least one download was started; false, with an ERROR line, when none was,
  ///         or the links document cannot be read
  static bool downloadTarget(char* fileList, std::string serialText, std::string targetDir);

  /// Makes one pass of the check for missing calibration files.
  /// @param dir calibration directory; is made when it does not exist
  /// @param serial serial number of the camera
  /// @param list receives the missing names, each followed by ";"; null to count only
  /// @param size without `list`: receives the size that the list needs, terminator included, 0 when
  ///             nothing is missing. With `list`: its capacity in bytes; the list ends ahead of a
  ///             name that does not fit. Null is refused with false, as are null patterns and a
  ///             null separator.
  /// @param xmlPattern name of the calibration XML, a format with one integer
  /// @param dataPattern name of a data file, a format with one text
  /// @param curvePattern name of a characteristic-curve file, a format with one text
  /// @param separator text that follows the name of the calibration XML
  /// @return true when nothing is missing; false when something is, and without memory: then the
  ///         size is 0, or the list ends early
  bool checkCaliFiles(const char* dir, int serial, char* list, int* size, const char* xmlPattern,
                      const char* dataPattern, const char* curvePattern, const char* separator);

  /// Lists the missing files of a camera's calibration. `errno` is left as it was, but without
  /// memory.
  /// @param serial serial number of the camera
  /// @return null when the calibration is complete; else a zero-terminated text of file names, each
  ///         followed by ";", that the caller releases with `delete[]`. When the calibration XML
  ///         cannot be loaded, only its name. **Null with `errno` `ENOMEM` when there is no memory
  ///         for the check**: whoever must know sets `errno` to 0 before.
  char* checkCalibration(unsigned long serial);

  char* _calibrationDir;           ///< calibration directory; owned
  char* _formatsDir;               ///< formats directory; owned
  std::vector<IROptics>* _optics;  ///< the last optics list; owned

  static IRCalibrationManager* _this;  ///< the instance; null when there is none
};

/// Checks one calibration file. Thread context: **one thread at a time**.
/// @param dir calibration directory; is made when it does not exist
/// @param base base name (see ConfigCali::caliFilenameString())
/// @param pattern name of the file, a format with one text
/// @param list receives the name, followed by ";", when the file is missing and both fit; null to
///             count only
/// @param size without `list`: grows by the characters that the list needs for the name. With
///             `list`: its capacity in bytes. When a name does not fit, it is **set to what the
///             list takes up**, so that no later name is appended either. Nothing is done when it,
///             `base` or `pattern` is null.
KALVISTA_API void _checkCaliFilesHelper(const char* dir, char* base, const char* pattern,
                                        char* list, int* size);

}  // namespace ardo

#endif  // KALVISTA_IRCALIBRATION_MANAGER_H
