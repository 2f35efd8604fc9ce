#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/FileStamp.h"

namespace sonavault {

/// From this length on a day counts as full: one that ran from some time in its first hour to
/// midnight. Units: seconds
inline constexpr double kFullDaySec = 82800.0;

/// A recording's length as the date list shows it, "HH:MM" cut to the minute, and "24:00" for a
/// full day.
std::string durationLabel(double seconds);

/// The label of a day that is being recorded, which is never rounded up to a full day.
std::string liveLabel(double seconds);

/// How long a day's audio file is, found in the cheapest way that is sure for its label: from a few
/// places of an MP3 when the label is the same a little earlier and a little later, else from all
/// of it. A full day is never read whole.
///
/// `stamp`: of the file as it is. Units: seconds. Errors: nothing, when the file is no audio or
/// can't be read.
std::optional<double> recordingLengthSec(const std::filesystem::path& file, const FileStamp& stamp);

/// An audio file as it was when it was looked at.
struct StampedFile {
    std::filesystem::path file;
    FileStamp stamp;
};

/// recordingLengthSec() of each file. Several are looked at side by side, since most of the time is
/// spent waiting for the disk; returns when all are done.
std::vector<std::optional<double>> recordingLengthsSec(std::span<const StampedFile> files);

}  // namespace sonavault
