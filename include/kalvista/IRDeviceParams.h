/// @file
/// The device configuration: record, defaults, print, and reader of the configuration file.
#ifndef KALVISTA_IRDEVICE_PARAMS_H
#define KALVISTA_IRDEVICE_PARAMS_H

#include <kalvista/export.h>

#include <cstdint>

namespace ardo {

/// What the user's device configuration file says about one camera.
///
/// A plain record without initial values: the reader fills it, IRDeviceParams_InitDefault() all but
/// two fields. The three texts are arrays made with `new[]` when the reader filled them; nothing in
/// the library ever releases them: whoever had the record filled releases them with `delete[]`.
/// The library carries the values to the code that drives the camera, which gives them their
/// meaning.
struct IRDeviceParams {
  std::uint64_t serial;           ///< serial number of the camera; 0 when none is given
  std::int32_t fov;               ///< field of view of the wanted optics, in degrees; 0 for none
  char* opticsText;               ///< tells apart optics of the same field of view; may be null
  char* formatsPath;              ///< directory of the video formats definition; may be null
  char* caliPath;                 ///< directory of the calibration files; may be null
  std::int32_t tMin;              ///< lower limit of the wanted temperature range, in °C
  std::int32_t tMax;              ///< upper limit of the wanted temperature range, in °C
  float framerate;                ///< wanted frame rate, in frames per second
  std::int32_t videoFormatIndex;  ///< index of the video format (USB endpoint)
  std::int32_t bispectral;        ///< 0 thermal sensor only, 1 bispectral technology
  std::int32_t average;           ///< not 0: frames are averaged over the intermediate frames
  std::int32_t autoFlag;          ///< not 0: the automatic flag is enabled
  float minInterval;              ///< minimum interval of the automatic flag, in the camera's unit
  float maxInterval;              ///< maximum interval of the automatic flag, in the camera's unit
  std::int32_t pifInMode;         ///< process interface input: 0 image capture, 1 flag control
  std::int32_t pifOutMode;        ///< process interface output: 0 off, 1 frame sync signal
  std::int32_t pifOutVoltage;     ///< process interface output voltage, in mV
  std::int32_t tChipMode;         ///< chip heating: 0 floating, 1 automatic, 2 fixed value
  float tChipFixedValue;          ///< chip heating value for mode 2, in the camera's unit
  float focus;                    ///< position of the focus motor, in percent of its range
};

/// Sets a record to the defaults of an application without a configuration file: range -20 to 100,
/// 20 frames per second, automatic flag on with 15, chip heating value 40, focus 50, all else 0 or
/// null. Thread context: **any thread**, on different records.
/// @param params record; its texts are not released. `pifOutMode` and `pifOutVoltage` are left as
///               they are, since applications set them before this call: **in a fresh record they
///               have no value**, and whoever reads them sets them.
KALVISTA_API void IRDeviceParams_InitDefault(IRDeviceParams& params);

/// Prints a record to standard output, one "name: value" a line, up to `tChipFixedValue`; texts
/// only when they are not null. The lines go through the C stream `stdout`, which is flushed after
/// each; an application that prints through streams of its own flushes them before. Thread context:
/// **process-wide**.
/// @param params record
KALVISTA_API void IRDeviceParams_Print(IRDeviceParams params);

/// Reads the device configuration file: an XML document with the root element "imager".
class KALVISTA_API IRDeviceParamsReader {
 public:
  /// Reads a file and logs each value that the record ends up with (DEBUG).
  ///
  /// The record is first reset to the reader's defaults, in every case: range 0 to 0, 30 frames per
  /// second, video format -1, automatic flag on with 15, chip heating value 40, focus 50, all
  /// else 0 or null. Its former texts are not released. Values are taken as they stand, without a
  /// check of their range. Thread context: **process-wide** (see SimpleXML::SimpleXML()).
  /// @param file path of the configuration file
  /// @param params receives the values; the caller releases its texts with `delete[]`
  /// @return true when the file was read; false, with an ERROR line and the record at the reader's
  ///         defaults, when it cannot be opened, its comments do not balance, it has no root
  ///         "imager", or there is no memory for it
  static bool readXML(const char* file, IRDeviceParams& params);
  /// The same as readXML() under a second name.
  /// @copydetails readXML
  static bool readXMLC(const char* file, IRDeviceParams& params);
};

}  // namespace ardo

#endif  // KALVISTA_IRDEVICE_PARAMS_H
