#include "export/AircheckExport.h"

#include <utility>

#include "export/ExportWords.h"
#include "platform/Format.h"

namespace sonavault {
namespace {

constexpr std::size_t kLiveButton = 0;
constexpr std::size_t kVoicetracksButton = 1;
constexpr int kLastHour = 23;

std::string kindOf(AircheckMode mode) {
    return mode == AircheckMode::liveMic ? "Live DJ" : "voicetrack";
}

ExportAlert nothingLoaded() {
    return {.message = "No recording loaded",
            .information = "Open a recording first, then press A again.",
            .buttons = {"OK"}};
}

ExportAlert noSegments(AircheckMode mode, HourWindow window) {
    const std::string hours =
        " in " + zeroPadded(window.start, 2) + ":00–" + zeroPadded(window.end, 2) + ":59";
    const std::string pairs =
        mode == AircheckMode::liveMic ? "Live On/Off pairs" : "voicetrack pairs";
    return {
        .message = "No " + kindOf(mode) + " segments found" + (window.isWholeDay() ? "" : hours),
        .information = "The recording's marker log has no matched " + pairs +
                       (window.isWholeDay() ? "" : " in the chosen hour window") +
                       " to use. Make sure Cadenzo has captured them.",
        .buttons = {"OK"}};
}

HourWindow windowOf(const AircheckAnswer& answer) {
    const auto [start, end] = std::minmax(answer.startHour, answer.endHour);
    return {start, end};
}

}  // namespace

/// What is to be told once the file is written, whatever the person has opened by then.
struct AircheckExport::Order {
    AircheckMode mode;
    HourWindow window;
    std::string date;
    std::string what;
    std::size_t count;
    double total;
    std::filesystem::path output;
};

AircheckQuestion aircheckQuestion() {
    AircheckQuestion question{
        .message = "Build an aircheck",
        .information =
            "Sonavault can compile two kinds of aircheck from the loaded recording's marker "
            "log:\n\n"
            "  • Live DJ — pairs of Live On/Off (every time the mic was open)\n"
            "  • Voicetracks — every voicetrack from setup through ending\n\n"
            // A number and its unit stay on one line.
            "Each segment is extended by 8\u00A0seconds before and after so the bed audio reads "
            "clearly. Overlapping segments are merged.\n\n"
            "Use the hour dropdowns to limit the export to a window — e.g. one DJ's show. Defaults "
            "cover the full day.",
        .buttons = {"Live DJ", "Voicetracks", "Cancel"},
        .startLabel = "Starting with:",
        .endLabel = "Ending with:",
        .startHour = 0,
        .endHour = kLastHour};
    for (int hour = 0; hour <= kLastHour; ++hour)
        question.hours.push_back(zeroPadded(hour, 2) + ":00");
    return question;
}

std::string suggestedAircheckName(AircheckMode mode, const std::string& date, HourWindow window) {
    const std::string hours = "_" + zeroPadded(window.start, 2) + "-" + zeroPadded(window.end, 2);
    return "Aircheck_" + aircheckTag(aircheckModeName(mode)) + "_" + date +
           (window.isWholeDay() ? "" : hours) + ".mp3";
}

void AircheckExport::exportAircheck() {
    if (!day_.loadedFileURL()) {
        host_.showAlert(nothingLoaded());
        return;
    }
    const AircheckAnswer answer = host_.askForAircheck(aircheckQuestion());
    if (answer.button != kLiveButton && answer.button != kVoicetracksButton) return;
    const auto mode =
        answer.button == kLiveButton ? AircheckMode::liveMic : AircheckMode::voicetracked;
    const HourWindow window = windowOf(answer);
    auto segments = beginningIn(window, computeAircheckSegments(day_.loadedFileURL(), mode));
    if (segments.empty())
        host_.showAlert(noSegments(mode, window));
    else
        saveSegments(mode, window, std::move(segments));
}

void AircheckExport::saveSegments(AircheckMode mode, HourWindow window,
                                  std::vector<Selection> segments) {
    const std::string what = counted(segments.size(), kindOf(mode) + " segment");
    const auto compiled = day_.loadedFileURL();
    const auto output =
        host_.chooseOutput({.title = "Save Aircheck",
                            .message = "Save the " + what + " into one MP3 file",
                            .directory = folder_.defaultExportFolderURL(),
                            .nameField = suggestedAircheckName(mode, day_.selectedDate(), window)});
    if (!output) return;
    folder_.remember(*output);
    // Midnight may have brought the new day while the panel was open; its sound is not the log's.
    if (day_.loadedFileURL() != compiled)
        return tellFailed(host_, "Aircheck failed", "Another day was opened in the meantime.");
    host_.setStatusBarText("Exporting aircheck…");
    const Order order{mode,   window,          day_.selectedDate(),
                      what,   segments.size(), totalDurationSec(segments),
                      *output};
    exporter_.exportSelectionsToMP3(
        std::move(segments), *output,
        lifetime_.guard(
            [this, order](const Result<Done, ExportError>& result) { tell(result, order); }));
}

void AircheckExport::tell(const Result<Done, ExportError>& result, const Order& order) {
    host_.setStatusBarText("");
    if (!result) return tellFailed(host_, "Aircheck failed", result.error().errorDescription());
    host_.publishAircheckSaved({.label = "manual",
                                .mode = aircheckModeName(order.mode),
                                .date = order.date,
                                .startHour = order.window.start,
                                .endHour = order.window.end,
                                .outputURL = order.output,
                                .segmentCount = order.count,
                                .totalDurationSec = order.total,
                                .source = "manual"});
    tellSaved(host_, "Aircheck saved", order.what, order.total, order.output);
}

}  // namespace sonavault
