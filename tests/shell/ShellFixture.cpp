#include "shell/ShellFixture.h"

#include "store/MarkerLogWriter.h"
#include "support/SyntheticMp3.h"
#include "views/DotView.h"
#include "views/ViewProbe.h"

namespace sonavault::testing {

void SwitchedLineInput::deliver(FrameCount frames, float amplitude) {
    const std::vector<float> samples(static_cast<std::size_t>(frames * 2), amplitude);
    const float* plane = samples.data();
    if (tap_ && running_) tap_(AudioBufferView{outputFormat(), frames, &plane});
}

ShellFixture::ShellFixture() {
    std::filesystem::create_directories(temp_ / "home/Calderwave/Station");
}

ShellServices ShellFixture::services() {
    return {
        .recorder = {.clock = clock_,
                     .log = log_,
                     .mainQueue = mainQueue_,
                     .preferences = preferences_,
                     .stationFolder = station_,
                     .flusher = flusher_,
                     .lineInput = input_,
                     .makeAudioLink =
                         [this] {
                             auto link = std::make_unique<ScriptedAudioLink>();
                             link_ = link.get();
                             return link;
                         },
                     .makeMarkerLink = [] { return std::make_unique<SilentMarkerLink>(); },
                     .makeMainTimer = [this] { return timers_.make(); }},
        .preferences = preferences_,
        .alerts = alerts_,
        .audioOutput = output_,
        .cacheFolder = temp_ / "cache",
        .hub = hub_,
        .exportDialogs = dialogs_,
        .revealInFileViewer =
            [this](const std::filesystem::path& file) { revealed_.push_back(file); },
        .helpClicked = [this] { ++timesHelped_; },
    };
}

void ShellFixture::launch() {
    delegate_ = std::make_unique<AppDelegate>(services());
    delegate_->applicationDidFinishLaunching();
}

void ShellFixture::passSeconds(double seconds) {
    for (double passed = 0; passed < seconds - 1e-9; passed += 0.05) {
        timers_.pass(0.05);
        tickOnce();
    }
}

void ShellFixture::playSeconds(double seconds, float amplitude) {
    constexpr FrameCount kBuffer = 4800;
    const double bufferSeconds = static_cast<double>(kBuffer) / input_.outputFormat().sampleRate;
    for (double played = 0; played < seconds - 1e-9; played += bufferSeconds) {
        timers_.pass(bufferSeconds);
        input_.deliver(kBuffer, amplitude);
    }
}

void ShellFixture::tickOnce() {
    mainQueue_.runAll();
    controller().tickDisplay();
}

void ShellFixture::connectCadenzo() {
    link_->onHandshake({44100, 2, true});
    tickOnce();
}

void ShellFixture::dropCadenzo() {
    link_->onDisconnect();
    tickOnce();
}

QColor ShellFixture::colourOfDot(SonavaultViewController& controller) {
    return named<DotView>(controller.rootView(), "statusBarConnectionDot")->colour();
}

std::string ShellFixture::statusText() {
    return controller().rootView().statusBar().statusBarText();
}

QColor ShellFixture::dotColour() {
    return colourOfDot(controller());
}

std::filesystem::path ShellFixture::fileOf(const std::string& date,
                                           const std::string& suffix) const {
    return temp_ / "home/Calderwave/Station/Logs/Audio" / ("Sonavault_" + date + "." + suffix);
}

void ShellFixture::haveDay(const std::string& date, const DayOnDisk& day) const {
    writeFile(fileOf(date), SyntheticMp3().frames(day.frames).bytes());
    writeFile(fileOf(date, "csv"), kMarkerLogHeader + day.log);
    if (day.startOffsetSec)
        writeFile(fileOf(date, "json"), R"({"version": 1, "start_offset_sec": )" +
                                            std::to_string(*day.startOffsetSec) + "}");
}

}  // namespace sonavault::testing
