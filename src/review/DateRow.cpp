#include "review/DateRow.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace sonavault {
namespace {

constexpr double kTextLeft = 34;
constexpr double kFirstExtraLineY = 51;
constexpr double kExtraLineH = 18;
constexpr double kBelowLastLine = 10;

/// A whole decimal integer with an optional sign, and nothing else.
std::optional<double> integer(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return static_cast<double>(value);
}

std::string expiryText(int days) {
    return "expires in " + std::to_string(days) + (days == 1 ? " day" : " days");
}

}  // namespace

double parseFractionOfDay(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos) return 0;
    const std::string_view rest = text.substr(colon + 1);
    const auto hours = integer(text.substr(0, colon));
    const auto minutes = integer(rest.substr(0, rest.find(':')));
    if (!hours || !minutes) return 0;
    return std::clamp((*hours * 3600 + *minutes * 60) / kSecondsInDay, 0.0, 1.0);
}

std::string dateRowMeta(const DailyRecording& recording) {
    return recording.recorded + " recorded · " + std::to_string(recording.markerCount) + " markers";
}

DateRowLook dateRowLook(const DailyRecording& recording) {
    DateRowLook look;
    look.texts.push_back(
        {DateRowPart::title, {kTextLeft, 9, 200, 20}, recording.date + " " + recording.dayOfWeek});
    if (recording.live) look.texts.push_back({DateRowPart::today, {162, 11, 60, 16}, "TODAY"});
    look.texts.push_back({DateRowPart::meta, {kTextLeft, 31, 240, 18}, dateRowMeta(recording)});
    double y = kFirstExtraLineY;
    if (recording.warning) {
        look.texts.push_back(
            {DateRowPart::warning, {kTextLeft, y, 240, kExtraLineH}, "⚠ " + *recording.warning});
        y += kExtraLineH;
    }
    if (recording.expiresInDays) {
        look.texts.push_back({DateRowPart::expiry,
                              {kTextLeft, y, 200, kExtraLineH},
                              expiryText(*recording.expiresInDays)});
        y += kExtraLineH;
    }
    look.height = y + kBelowLastLine;
    return look;
}

std::string dateRowSentence(const DailyRecording& recording) {
    std::string sentence;
    for (const DateRowText& each : dateRowLook(recording).texts) {
        if (!sentence.empty()) sentence += ", ";
        sentence += each.text;
    }
    return sentence;
}

DateIndicator dateIndicator(const DailyRecording& recording, bool isRecording) {
    if (recording.live && isRecording) return DateIndicator::recording;
    return recording.warning ? DateIndicator::warning : DateIndicator::none;
}

double dayProgressWidth(const DailyRecording& recording, double width) {
    return recording.live ? width * parseFractionOfDay(recording.recorded) : 0;
}

std::string dateRowHint(const std::string& date, const std::string& today) {
    if (date == today) return "Today's recording — click to view the live timeline.";
    return "Click to view " + date + " on the timeline.";
}

std::string toggleRecordingTitle(bool isRecording) {
    return isRecording ? "Stop Recording" : "Start Recording";
}

std::string deleteRecordingTitle(const DailyRecording& recording) {
    return "Delete " + recording.date + " (" + recording.dayOfWeek + ")…";
}

}  // namespace sonavault
