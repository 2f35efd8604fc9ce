#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/RecordingModel.h"

namespace sonavault {

// The reading side of the marker log; the format is described in docs/formats/marker-log.md.
//
// Thread: any.

/// One line of a log as its fields, without their quotes. Never empty: a line without a comma is
/// one field. A carriage return belongs to the field that it stands in.
std::vector<std::string> parseCSVRow(std::string_view line);

/// The moment that a row's first column names, as seconds of the day: the pieces between colons
/// that read as integers, when there are exactly three. No range is tested, so that "24:00:00"
/// passes, and "08:00:00.5" doesn't.
std::optional<double> markerTimeSec(std::string_view timestamp);

/// The text of a log. Errors: nothing, when the file can't be read as UTF-8 text.
std::optional<std::string> readMarkerLogText(const std::filesystem::path& log);

/// Gives `visit` each row of a log with this content, its header and empty lines left out.
void forEachMarkerRow(std::string_view text, const std::function<void(std::string_view)>& visit);

/// The markers of a log with this content, in the order of the log; damaged rows are left out.
/// Errors: nothing, when the text is not UTF-8 throughout.
std::optional<std::vector<Marker>> parseMarkerText(std::string_view text);

/// The markers of the day's log. Errors: nothing, when the file can't be read as UTF-8 text.
std::optional<std::vector<Marker>> parseMarkerCSV(const std::filesystem::path& log);

/// How many rows a log of this content has, its header not counted, damaged rows counted.
/// Errors: 0, when the text is not UTF-8 throughout.
int countMarkerRows(std::string_view text);

/// How many rows the day's log has. Cheap enough to be asked every two seconds: no row is taken
/// apart. Errors: 0, when the file can't be read as UTF-8 text.
int countMarkerLines(const std::filesystem::path& log);

}  // namespace sonavault
