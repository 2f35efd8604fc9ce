#include "shell/ReviewDesk.h"

namespace sonavault {

ReviewDesk::ReviewDesk(ShellServices& services, KeyResponderView& view,
                       std::function<const SVRecorder*()> recorder)
    : services_(services),
      view_(view),
      recorder_(std::move(recorder)),
      lengths_(services.cacheFolder),
      days_(services.recorder.stationFolder, services.recorder.clock, services.recorder.log,
            lengths_, *this),
      peaks_(*this, services.recorder.clock, services.recorder.log, services.recorder.mainQueue),
      day_(*this, days_, peaks_, services.recorder.clock, services.recorder.log),
      playback_(*this, day_, peaks_, services.audioOutput, services.recorder.clock,
                services.recorder.log) {
    view_.dayList().onDateChosen = [this](const std::string& date) {
        day_.selectAndLoadRecording(date);
    };
    view_.dayList().onDeleteRequested = [this](const DailyRecording& row) {
        days_.deleteRecording(row);
    };
}

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
    view_.dayList().render(days_.dailyRecordings(), days_.selectedDate());
}

void ReviewDesk::updateRow(const DailyRecording& row) {
    view_.dayList().updateRow(row);
}

void ReviewDesk::setStatusBarText(const std::string& text) {
    view_.statusBar().statusBarText().showText(QString::fromStdString(text));
}

void ReviewDesk::showEmptyState(const std::string& text) {
    view_.emptyState().showText(QString::fromStdString(text));
    view_.emptyState().setVisible(!text.empty());
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
