#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "shell/AppDelegate.h"
#include "support/ExpectedQtWarnings.h"
#include "support/ManualClock.h"
#include "support/ManualQueue.h"
#include "support/ManualTimers.h"
#include "support/Moments.h"
#include "support/RecordedLog.h"
#include "support/ScopedTimeZone.h"
#include "support/TempFolder.h"

namespace sonavault::testing {

/// A line input whose device and sound server come and go as the test likes.
class SwitchedLineInput final : public AudioInput {
  public:
    AudioFormat outputFormat() override { return {48000, 2, true}; }
    void installTap(int, const AudioFormat&, Tap tap) override { tap_ = std::move(tap); }
    void removeTap() override { tap_ = nullptr; }
    Outcome start() override {
        ++starts;
        if (!works) return Outcome::failure("there is no sound server");
        running_ = true;
        return Done{};
    }
    void stop() override { running_ = false; }
    bool isRunning() const override { return running_; }
    std::string defaultDeviceName() override {
        ++questions;
        return deviceName;
    }
    bool lookForDevice() override {
        ++looks;
        return std::exchange(found_, !deviceName.empty());
    }

    /// One buffer of a steady level.
    void deliver(FrameCount frames, float amplitude);

    bool works = true;
    std::string deviceName = "Studio console";
    int starts = 0;
    int questions = 0;  ///< each of which may make the person wait
    int looks = 0;      ///< in the background

  private:
    bool found_ = false;
    Tap tap_;
    bool running_ = false;
};

/// Loudspeakers that nobody hears, with a sound server that comes and goes as the test likes.
class SilentOutput final : public AudioOutput {
  public:
    Outcome start() override {
        return works ? Outcome(Done{}) : Outcome::failure("there is no sound server");
    }
    void play(std::shared_ptr<AudioOutputSound> sound) override { playing = std::move(sound); }
    void stop() override { playing.reset(); }
    AudioOutputLevels levels() const override { return {}; }

    bool works = true;
    std::shared_ptr<AudioOutputSound> playing;
};

/// A link whose sender is the test.
class ScriptedAudioLink final : public AudioLink {
  public:
    void start() override {}
    void stop() override {}
};

/// A marker link on which nobody speaks.
class SilentMarkerLink final : public MarkerLink {
  public:
    void start() override {}
    void stop() override {}
};

/// A hub whose other programs are the test.
class RecordedHub final : public StationHub {
  public:
    struct Said {
        std::string about;  ///< a topic or a key
        QJsonObject what;
    };

    void join(const std::string& name, std::function<void(const std::string&)> onState) override {
        joinedAs.push_back(name);
        tellState = std::move(onState);
    }
    void subscribe(const std::string& topic,
                   std::function<void(const QJsonObject&)> handler) override {
        ++subscribed;
        subscriptions[topic] = std::move(handler);
    }
    void notify(const std::string& topic, const QJsonObject& payload) override {
        notified.push_back({topic, payload});
    }
    void stateSet(const std::string& key, const QJsonObject& value) override {
        states[key] = value;
        ++timesSet[key];
    }

    std::vector<std::string> joinedAs;
    int subscribed = 0;
    std::function<void(const std::string&)> tellState;
    std::map<std::string, std::function<void(const QJsonObject&)>> subscriptions;
    std::vector<Said> notified;
    std::map<std::string, QJsonObject> states;
    std::map<std::string, int> timesSet;
};

/// Answers every alert at once, and keeps them.
class RecordedAlerts final : public Alerts {
  public:
    int showModally(const Alert& alert) override {
        shown.push_back(alert);
        return 0;
    }

    std::vector<Alert> shown;
};

/// Answers what an export asks as it was told to, and keeps what was asked.
class RecordedDialogs final : public ExportDialogs {
  public:
    AircheckAnswer askForAircheck(const AircheckQuestion& question) override {
        questions.push_back(question);
        return aircheck;
    }
    std::optional<std::filesystem::path> chooseOutput(const SavePanel& panel) override {
        panels.push_back(panel);
        return output;
    }

    AircheckAnswer aircheck{.button = 2};
    std::optional<std::filesystem::path> output;
    std::vector<AircheckQuestion> questions;
    std::vector<SavePanel> panels;
};

/// A day that was recorded earlier: two hours from midnight in which nothing happened, unless the
/// test wants another.
struct DayOnDisk {
    int frames = 200'000;  ///< of 36 ms
    std::string log;       ///< the rows of its markers
    std::optional<int> startOffsetSec;
};

/// The whole program on a station of its own, with its clock, sources and alerts in the test's
/// hands.
class ShellFixture : public ::testing::Test {
  protected:
    ShellFixture();

    ShellServices services();

    /// As when the person starts the program.
    void launch();
    void quit() { delegate_.reset(); }

    AppDelegate& delegate() { return *delegate_; }
    SonavaultViewController& controller() { return *delegate_->viewController(); }
    const SVRecorder& recorder() { return *controller().recorder(); }

    /// Lets the clock go on and the display tick as often as it would have.
    void passSeconds(double seconds);
    void tickOnce();

    /// A steady level on the line input, true to the clock: each buffer arrives when its last frame
    /// was heard.
    void playSeconds(double seconds, float amplitude);

    /// The automation connects and agrees on a format, or goes away.
    void connectCadenzo();
    void dropCadenzo();

    std::string statusText();
    QColor dotColour();
    static QColor colourOfDot(SonavaultViewController& controller);
    bool isRecording() { return recorder().isRecording(); }
    std::filesystem::path fileOf(const std::string& date, const std::string& suffix = "mp3") const;
    /// Of today.
    std::filesystem::path dayFile() const { return fileOf("2026-03-02"); }
    void haveDay(const std::string& date, const DayOnDisk& day = {}) const;

    // There is no window manager to tell the window's least size to.
    const ExpectedQtWarnings offscreen_{"This plugin does not support propagateSizeHints()"};

    TempFolder temp_;
    const ScopedTimeZone zone_{"Europe/Berlin"};
    ManualClock clock_{at("2026-03-02T13:05:09.123Z")};
    ManualTimers timers_{clock_};
    RecordedLog log_;
    ManualQueue mainQueue_;
    Preferences preferences_{temp_ / "standard.conf"};
    const StationFolder station_{temp_ / "home", Preferences(temp_ / "shared.conf")};
    DiskFlusher flusher_;
    SwitchedLineInput input_;
    SilentOutput output_;
    RecordedAlerts alerts_;
    RecordedHub hub_;
    RecordedDialogs dialogs_;
    std::vector<std::filesystem::path> revealed_;
    int timesHelped_ = 0;
    ScriptedAudioLink* link_ = nullptr;
    std::unique_ptr<AppDelegate> delegate_;
};

}  // namespace sonavault::testing
