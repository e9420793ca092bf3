/// @file
/// Umbrella header: includes every other public header of the library.
///
/// @mainpage libkalvista
///
/// What imaging code for USB infrared cameras needs before and beside the video stream: the device
/// configuration file read into a record, the calibration of a camera read into a model with its
/// queries, the serial of an attached camera, the calibration files that are missing listed,
/// copied and downloaded, and one log for the whole process.
///
/// @section thread_words Thread context
///
/// The library creates no threads and takes no locks. Each description names one of these words:
/// - **any thread**: may be called from any number of threads at once, on different arguments.
/// - **one thread at a time**: works on state of the object or of the process; the caller sees to
///   it that no other call on the same state runs meanwhile.
/// - **process-wide**: as before, and changes something that all threads of the process see, such
///   as the working directory or the numeric locale.
///
/// @section ownership_words Ownership
///
/// "The caller releases it with `delete[]`" means an array made with `new[]`; "with `delete`" a
/// single object. Everything else that a pointer leads to stays the library's.
///
/// @section failure_words Without memory
///
/// Nothing is thrown. A call that gets no memory gives its result for failure, or null where it
/// hands out a record or a text, and leaves what it works on as it was or as its description says.
/// Log lines and printed lines are lost. The next call works again when there is memory.
///
/// @section unit_words Units
///
/// Values of configuration and calibration are carried as the files have them. The library orders
/// them, cuts temperatures to whole degrees, and computes with none. What they are measured in is
/// the imaging code's to say: "°C" stands where such code means degrees Celsius, "the camera's
/// unit" where this library knows of none.
#ifndef KALVISTA_KALVISTA_H
#define KALVISTA_KALVISTA_H

#include <kalvista/Cali.h>
#include <kalvista/FileSystem.h>
#include <kalvista/IRCalibrationManager.h>
#include <kalvista/IRDeviceParams.h>
#include <kalvista/IRLogger.h>
#include <kalvista/Logger.h>
#include <kalvista/SimpleXML.h>
#include <kalvista/TextRoutines.h>
#include <kalvista/Timer.h>
#include <kalvista/export.h>
#include <kalvista/version.h>

#endif  // KALVISTA_KALVISTA_H
