/// @file
/// The calibration of one camera: model, loader and queries.
#ifndef KALVISTA_CALI_H
#define KALVISTA_CALI_H

#include <kalvista/export.h>

#include <cstdint>

/// Key of an optics in queries.
struct OPTICS {
  std::int32_t FOV;  ///< field of view, in degrees
  char* Text;        ///< text that tells apart optics of the same field of view; may be null;
                     ///< borrowed: in results it is the model's, valid until the next load
};

/// Temperature interval: key of a range in queries, and result.
struct Range {
  float TempLo;  ///< lower end, in °C
  float TempHi;  ///< upper end, in °C
};

/// Calibrated frame rate, in frames per second.
using FR = std::uint16_t;

/// Device constants of a camera, carried for the imaging code, which gives them their meaning.
class KALVISTA_API MainSection {
 public:
  /// Sets every constant to its default.
  MainSection();

  std::uint16_t TecA = 3400;                  ///< thermoelectric cooler, constant A
  std::uint16_t TecB = 400;                   ///< thermoelectric cooler, constant B
  std::uint16_t TecC = 400;                   ///< thermoelectric cooler, constant C
  std::uint16_t TecD = 120;                   ///< thermoelectric cooler, constant D
  float TempTEC_Step = 5.0F;                  ///< cooler temperature: step
  float mainReserved = 10.0F;                 ///< never read from the file
  float TempTECOffset = 294.5F;               ///< cooler temperature: offset
  float TempTECGain = 13.055F;                ///< cooler temperature: gain
  float TempFlagOffset = 0.0F;                ///< flag probe: offset
  float TempChipFactor = 1.0F;                ///< chip probe: factor
  float TempChipOffset = 0.0F;                ///< chip probe: offset
  float TempBoxOffset = 0.0F;                 ///< box probe: offset
  float TempOpticsOffset = 0.0F;              ///< optics probe: offset
  float TempProcOffset = 0.0F;                ///< processor probe: offset
  float TempHouseOffset = 0.0F;               ///< house probe: offset
  float PifInOffset = 0.0F;                   ///< process interface input: offset
  float PifInGain = 1.0F;                     ///< process interface input: gain
  float PifOutOffset = 0.0F;                  ///< process interface output: offset
  float PifOutGain = 1.0F;                    ///< process interface output: gain
  std::int16_t AddedOffset = 0;               ///< added offset
  float BindTempChipToTempFlagOffset = 0.8F;  ///< chip probe bound to the flag probe: offset
  std::uint16_t FlagCycles = 10;              ///< cycles of the flag
  std::uint16_t FlagCycles_Ignore = 2;        ///< cycles of the flag that are ignored
  float AlphaLowTemp = 23.0F;                 ///< low-temperature correction: temperature
  float AlphaLowFactor = 1.0F;                ///< low-temperature correction: factor
};

/// Parameters of a range's calibration table, carried for the imaging code.
struct TableParams {
  double T1 = 0.0;                   ///< an integer in the file
  double T3 = 0.0;                   ///< an integer in the file
  std::uint16_t E1 = 0;              ///< table parameter E1
  std::uint16_t E3 = 0;              ///< table parameter E3
  double Lambda = 0.0;               ///< single precision in the file
  std::int64_t tableReserved1 = 0;   ///< never read from the file
  double tableReserved2 = -100.0;    ///< never read from the file
  std::uint16_t tableReserved3 = 0;  ///< never read from the file
  bool Normalize = false;            ///< not 0 in the file
};

/// One temperature range of one optics. All pointers are owned by the model.
struct TemperatureRange {
  std::uint16_t Fid = 0;            ///< value of the element "Fid"
  std::uint16_t Skim = 0;           ///< value of the element "Skim"
  float TempLo = 0.0F;              ///< lower end, in °C
  float TempHi = 0.0F;              ///< upper end, in °C
  float TempLoExt = -100.0F;        ///< lower end of the extended range, in °C
  float TempHiExt = -100.0F;        ///< upper end of the extended range, in °C
  FR** framerates = nullptr;        ///< `framerateCount` single values; null without "Framerates"
  std::int32_t framerateCount = 0;  ///< number of calibrated frame rates
  std::uint16_t Decimal = 1;        ///< decimals of a temperature
  TableParams* tableParams = nullptr;  ///< never null in the model
};

/// One optics of a camera. All pointers are owned by the model.
struct OpticsDef {
  std::int32_t FOV = 0;          ///< field of view, in degrees
  std::int32_t SerNo = 0;        ///< serial number of the optics
  char* Text = nullptr;          ///< tells apart optics of the same field of view; may be null
  double reserved = -1.0;        ///< never read from the file
  bool SamplePointCali = false;  ///< the optics needs no characteristic-curve files
  TemperatureRange** ranges = nullptr;  ///< `rangeCount` ranges, in file order
  std::int32_t rangeCount = 0;          ///< number of ranges
};

/// The optics of a camera. All pointers are owned by the model.
struct OpticsList {
  OpticsDef** items = nullptr;  ///< `count` optics, in file order
  std::int32_t count = 0;       ///< number of optics
};

/// The calibration of one camera, and the queries on it.
///
/// One instance serves the whole process and holds one camera's calibration at a time. Until a
/// calibration is loaded it holds the initial model: one optics of 30° without text, with the
/// ranges -20 to 100, 0 to 250 and 150 to 900.
///
/// Matching of optics: the first optics of the list whose `FOV` equals the key's and whose text
/// matches by one of two rules:
/// - **strict**, for all queries but two: null and empty are the same; texts are both empty, or
///   equal to the letter;
/// - **lenient**, for getOpticsIndex(int, char*) and the optics of getTempRangeDecimal(): an empty
///   text on either side matches any.
///
/// A range matches when both its ends equal the key's exactly.
///
/// Failures of all queries: null keys, unknown optics, unknown ranges and indexes out of range give
/// the result named "not found". Queries write no log line.
/// Ownership: records handed out are single objects that the caller releases with `delete`.
/// Thread context of all members: **one thread at a time**; load() is **process-wide**.
class KALVISTA_API ConfigCali {
 public:
  /// Gives the one instance and makes it on the first call. It lives until the process ends.
  /// @return the instance; null when there is none and no memory for it
  static ConfigCali* getInstance();

  /// Makes an instance of its own with the initial model. Applications use getInstance(). Without
  /// memory the model is null: queries find nothing, and load() makes it.
  ConfigCali();
  /// Releases the model.
  ~ConfigCali();
  ConfigCali(const ConfigCali&) = delete;
  ConfigCali& operator=(const ConfigCali&) = delete;

  /// Tells whether the calibration of this camera is loaded.
  /// @param serial serial number of the camera
  /// @return true when it is
  bool isLoaded(int serial) const;

  /// Loads the file "Cali-<serial>.xml" of a directory, which is made when it does not exist.
  ///
  /// When the calibration of the same serial is loaded already, nothing is read. When that of
  /// another is, the model first returns to its initial state. Elements that are absent, or whose
  /// text is no number, leave their fields at the initial values; integers are cut to 16 bits where
  /// the field has 16.
  /// @param path calibration directory; empty means "Imager" below the working directory
  /// @param serial serial number of the camera
  /// @return 0 when the calibration is loaded; 0x80070005 when the file cannot be opened, its
  ///         comments do not balance, it has no root "CaliData", or there is no memory for it
  unsigned int load(const char* path, int serial);

  /// Counts the optics.
  /// @return the count
  int getOpticsCount() const;
  /// Finds an optics by the strict rule.
  /// @param key field of view and text
  /// @return its index; -1 when not found
  int getOpticsIndex(OPTICS* key) const;
  /// Finds an optics by the lenient rule.
  /// @param fov field of view, in degrees
  /// @param text text; may be null
  /// @return its index; -1 when not found
  int getOpticsIndex(int fov, char* text) const;
  /// Gives the key of an optics.
  /// @param index from 0, below getOpticsCount()
  /// @return new record whose text is the model's own; null when not found
  OPTICS* getOptics(int index) const;

  /// Counts the temperature ranges of an optics.
  /// @param optics key
  /// @return the count; -1 when not found
  int getTempRangeCount(OPTICS* optics) const;
  /// Counts the temperature ranges of an optics.
  /// @param fov field of view, in degrees
  /// @param text text; may be null
  /// @return the count; -1 when not found
  int getTempRangeCount(int fov, char* text) const;
  /// Finds a temperature range.
  /// @param optics key
  /// @param range key
  /// @return its index; -1 when not found
  int getTempRangeIndex(OPTICS* optics, Range* range) const;
  /// Finds a temperature range.
  /// @param fov field of view, in degrees
  /// @param text text; may be null
  /// @param tMin lower end of the range, in °C
  /// @param tMax upper end of the range, in °C
  /// @return its index; -1 when not found
  int getTempRangeIndex(int fov, char* text, float tMin, float tMax) const;
  /// Gives a temperature range.
  /// @param optics key
  /// @param index from 0, below getTempRangeCount()
  /// @return new record; null when not found
  Range* getTempRange(OPTICS* optics, int index) const;
  /// Gives a temperature range.
  /// @param fov field of view, in degrees
  /// @param text text; may be null
  /// @param index from 0, below getTempRangeCount()
  /// @return new record; null when not found
  Range* getTempRange(int fov, char* text, int index) const;
  /// Gives the extended interval of a temperature range.
  /// @copydetails getTempRange(OPTICS*, int) const
  Range* getExtendedTempRange(OPTICS* optics, int index) const;
  /// Gives the extended interval of a temperature range.
  /// @copydetails getTempRange(int, char*, int) const
  Range* getExtendedTempRange(int fov, char* text, int index) const;
  /// Gives the extended interval of a temperature range.
  /// @param fov field of view, in degrees
  /// @param text text; may be null
  /// @param tMin lower end of the range, in °C
  /// @param tMax upper end of the range, in °C
  /// @return new record; null when not found
  Range* getExtendedTempRange(int fov, char* text, float tMin, float tMax) const;
  /// Gives the interval from the lowest to the highest temperature of an optics.
  /// @param optics key
  /// @return new record, 1000000 to -1000000 for an optics without ranges; null when not found
  Range* getTempRangeOverAll(OPTICS* optics) const;
  /// Gives the interval from the lowest to the highest temperature of all optics.
  /// @return new record, 1000000 to -1000000 when there are no ranges
  Range* getTempRangeOverAll() const;

  /// Counts the calibrated frame rates of a range.
  /// @param optics key
  /// @param range key
  /// @return the count; -1 when not found
  int getFramerateCount(OPTICS* optics, Range* range) const;
  /// Finds a frame rate of a range.
  /// @param optics key
  /// @param range key
  /// @param fr frame rate, in frames per second
  /// @return its index; -1 when the optics or the range is not found or the range has no array of
  ///         frame rates; -2 when the range lists none or not this one
  int getFramerateIndex(OPTICS* optics, Range* range, unsigned short fr) const;
  /// Finds a frame rate of a range.
  /// @param fov field of view, in degrees
  /// @param text text; may be null
  /// @param tMin lower end of the range, in °C
  /// @param tMax upper end of the range, in °C
  /// @param fr frame rate, in frames per second
  /// @return as getFramerateIndex(OPTICS*, Range*, unsigned short)
  int getFramerateIndex(int fov, char* text, float tMin, float tMax, unsigned short fr) const;
  /// Gives a frame rate of a range.
  /// @param optics key
  /// @param range key
  /// @param index from 0, below getFramerateCount()
  /// @return frame rate, in frames per second; 0 when not found
  unsigned short getFramerate(OPTICS* optics, Range* range, int index) const;
  /// Checks whether a range is calibrated for a frame rate.
  ///
  /// A range without an element "Framerates" is calibrated for no frame rate in particular: the
  /// frame rate 0 names its files. It answers true with `fr` set to 0, and so does an unknown
  /// range.
  /// @param optics key
  /// @param range key
  /// @param fr frame rate, in frames per second; set to 0 when it is not one of the range's
  /// @return false when the range has an element "Framerates", **be it empty**, without this one
  bool checkFramerate(OPTICS* optics, Range* range, unsigned short& fr) const;
  /// Checks whether a range is calibrated for a frame rate.
  /// @param fov field of view, in degrees
  /// @param text text; may be null
  /// @param tMin lower end of the range, in °C
  /// @param tMax upper end of the range, in °C
  /// @param fr frame rate, in frames per second; set to 0 when it is not one of the range's
  /// @return as checkFramerate(OPTICS*, Range*, unsigned short&)
  bool checkFramerate(int fov, char* text, float tMin, float tMax, unsigned short& fr) const;

  /// Gives the decimals of a range's temperatures. The optics is found by the lenient rule, the
  /// index of the range by the strict one.
  /// @param fov field of view, in degrees
  /// @param text text; may be null
  /// @param tMin lower end of the range, in °C
  /// @param tMax upper end of the range, in °C
  /// @return number of decimals; 0 when not found
  unsigned short getTempRangeDecimal(int fov, char* text, float tMin, float tMax) const;

  /// Forms the base name of a calibration file, such as "1234-33-T-M20-100-32": serial, field of
  /// view, text, both temperatures cut toward zero ("M" for those below 0), frame rate.
  /// @param serial serial number of the camera
  /// @param fov field of view, in degrees
  /// @param text text; left out when null or empty
  /// @param tMin lower end of the range, in °C; NaN counts as 0, what an integer cannot hold is
  ///             clamped
  /// @param tMax upper end of the range, likewise
  /// @param fr frame rate; left out when 0
  /// @param out receives the zero-terminated name, cut to `size`
  /// @param size capacity in bytes, terminator included
  /// @return false, with nothing written, when `size` is below 1 or `out` is null
  bool caliFilenameString(int serial, int fov, char* text, float tMin, float tMax,
                          unsigned short fr, char* out, int size) const;
  /// Forms the base name of a calibration file.
  /// @param serial serial number of the camera
  /// @param fov field of view, in degrees
  /// @param text text; left out when null or empty
  /// @param range temperature range
  /// @param fr frame rate; left out when 0
  /// @param out receives the zero-terminated name, cut to `size`
  /// @param size capacity in bytes, terminator included
  /// @return false, with nothing written, when `size` is below 1 or `out` or `range` is null
  bool caliFilenameString(int serial, int fov, char* text, Range* range, unsigned short fr,
                          char* out, int size) const;

  MainSection* mainSection = nullptr;  ///< device constants; owned; null only without memory
  OpticsList* opticsList = nullptr;    ///< the optics; owned; null only without memory
  bool loaded = false;                 ///< a calibration is loaded
  std::int32_t serial = -1;            ///< serial number of its camera; -1 when none is loaded

  static ConfigCali* _this;  ///< the instance; null until the first getInstance()
};

#endif  // KALVISTA_CALI_H
