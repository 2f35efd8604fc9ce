#include "shell/ShellFixture.h"

namespace sonavault::testing {

void SwitchedLineInput::playOneSecond(float amplitude) {
    constexpr FrameCount kFrames = 4096;
    const std::vector<float> samples(kFrames * 2, amplitude);
    const float* plane = samples.data();
    for (FrameCount done = 0; done < 48000; done += kFrames)
        if (tap_ && running_) tap_(AudioBufferView{outputFormat(), kFrames, &plane});
}

ShellFixture::ShellFixture() {
    std::filesystem::create_directories(temp_ / "home/Calderwave/Station");
}

WallTime ShellFixture::at(const std::string& utc) {
    WallTime moment;
    EXPECT_TRUE(parseIso8601WithFraction(utc, moment)) << utc;
    return moment;
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
                         }},
        .preferences = preferences_,
        .alerts = alerts_,
        .openFile =
            [this](const std::filesystem::path& file) {
                opened_.push_back(file);
                return opensFiles_;
            },
    };
}

void ShellFixture::launch() {
    delegate_ = std::make_unique<AppDelegate>(services());
    delegate_->applicationDidFinishLaunching();
}

void ShellFixture::passSeconds(double seconds) {
    for (double passed = 0; passed < seconds - 1e-9; passed += 0.05) {
        clock_.advance(0.05);
        tickOnce();
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

std::string ShellFixture::statusText() {
    return controller().rootView().statusBar().statusBarText().text().toStdString();
}

QColor ShellFixture::dotColour() {
    return controller().rootView().statusBar().connectionDot().colour();
}

std::filesystem::path ShellFixture::dayFile() const {
    return temp_ / "home/Calderwave/Station/Logs/Audio/Sonavault_2026-03-02.mp3";
}

}  // namespace sonavault::testing
