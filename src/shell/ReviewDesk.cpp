#include "shell/ReviewDesk.h"

namespace sonavault {

ReviewDesk::ReviewDesk(ShellServices& services, ReviewScreen& screen,
                       std::function<const SVRecorder*()> recorder)
    : services_(services),
      screen_(screen),
      recorder_(std::move(recorder)),
      lengths_(services.cacheFolder),
      days_(services.recorder.stationFolder, services.recorder.clock, services.recorder.log,
            lengths_, *this),
      peaks_(*this, services.recorder.clock, services.recorder.log, services.recorder.mainQueue),
      day_(*this, days_, peaks_, services.recorder.clock, services.recorder.log),
      playback_(*this, day_, peaks_, services.audioOutput, services.recorder.clock,
                services.recorder.log) {}

bool ReviewDesk::isRecording() const {
    return recorder_() && recorder_()->isRecording();
}

double ReviewDesk::currentRecordingDurationSec() const {
    return recorder_() ? recorder_()->currentRecordingDurationSec() : 0;
}

std::optional<std::filesystem::path> ReviewDesk::lastRecordingURL() const {
    return recorder_() ? recorder_()->lastRecordingURL() : std::nullopt;
}

void ReviewDesk::loadRecording(const std::filesystem::path& audio, bool silent) {
    day_.loadRecording(audio, silent);
}

void ReviewDesk::renderDateList() {
    screen_.renderDateList(days_.dailyRecordings(), days_.selectedDate());
}

std::optional<AudioExtent> ReviewDesk::audioExtent() const {
    const auto& url = day_.loadedFileURL();
    const auto file = day_.loadedFile();
    if (!url || !file) return std::nullopt;
    std::optional<RecordingNow> recording;
    if (isRecording())
        recording = RecordingNow{.lastRecordingURL = lastRecordingURL(),
                                 .currentRecordingDurationSec = currentRecordingDurationSec()};
    return AudioExtent{.start = day_.currentRecordingOffset(),
                       .durationSec = audioDurationSec(*url, file->durationSec(), recording)};
}

std::size_t ReviewDesk::ask(const DayListWarning& warning) {
    QStringList buttons;
    for (const auto& button : warning.buttons) buttons << QString::fromStdString(button);
    return static_cast<std::size_t>(
        services_.alerts.showModally({.style = Alert::warning,
                                      .message = QString::fromStdString(warning.message),
                                      .information = QString::fromStdString(warning.information),
                                      .buttons = buttons}));
}

void ReviewDesk::showWarning(const std::string& message, const std::string& information) {
    ask({.message = message, .information = information, .buttons = {"OK"}});
}

}  // namespace sonavault
