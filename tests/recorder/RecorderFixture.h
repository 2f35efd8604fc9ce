#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "recorder/SVRecorder.h"
#include "store/RecordingManifest.h"
#include "support/ManualClock.h"
#include "support/ManualQueue.h"
#include "support/ManualTimers.h"
#include "support/Moments.h"
#include "support/RecordedLog.h"
#include "support/ScopedTimeZone.h"
#include "support/TempFolder.h"

namespace sonavault::testing {

/// A line input that the test plays into.
class FakeLineInput final : public AudioInput {
  public:
    AudioFormat outputFormat() override { return format; }
    void installTap(int bufferFrames, const AudioFormat&, Tap tap) override {
        tapFrames = bufferFrames;
        tap_ = std::move(tap);
    }
    void removeTap() override { tap_ = nullptr; }
    Outcome start() override {
        if (!startError.empty()) return Outcome::failure(startError);
        running_ = true;
        return Done{};
    }
    void stop() override { running_ = false; }
    bool isRunning() const override { return running_; }
    std::string defaultDeviceName() override { return deviceName; }
    bool lookForDevice() override { return !deviceName.empty(); }

    bool hasTap() const { return static_cast<bool>(tap_); }
    void deliver(const AudioBufferView& buffer) {
        if (tap_ && running_) tap_(buffer);
    }

    AudioFormat format{22050, 1, true};
    std::string deviceName = "Studio console";
    std::string startError;
    int tapFrames = 0;

  private:
    Tap tap_;
    bool running_ = false;
};

/// How often a link was started and stopped; outlives the link.
struct LinkLife {
    int starts = 0;
    int stops = 0;
    bool listens() const { return starts > stops; }
};

/// A link whose client is the test.
template <class Link>
class FakeLink final : public Link {
  public:
    explicit FakeLink(LinkLife& life) : life_(life) {}
    void start() override { ++life_.starts; }
    void stop() override { ++life_.stops; }

  private:
    LinkLife& life_;
};
using FakeAudioLink = FakeLink<AudioLink>;
using FakeMarkerLink = FakeLink<MarkerLink>;

/// The program around the recorder, remembering what it was told.
class RecordedHost final : public RecorderHost {
  public:
    void setRecording(bool recording) override { isRecording = recording; }
    void setRecordingInputDb(float db) override { inputDb = db; }
    void setStatusBarText(const std::string& text) override { statuses.push_back(text); }
    void appendLivePeak(float rms, double bucketSec) override {
        peaks.emplace_back(rms, bucketSec);
    }
    void showAlert(const std::string& message, const std::string& information) override {
        alerts.emplace_back(message, information);
    }

    std::string status() const { return statuses.empty() ? "" : statuses.back(); }

    bool isRecording = false;
    std::atomic<float> inputDb{0};
    std::vector<std::string> statuses;
    std::vector<std::pair<float, double>> peaks;
    std::vector<std::pair<std::string, std::string>> alerts;
};

/// A recorder on a station of its own, with the clock, the sources and the main queue in the test's
/// hands.
class RecorderFixture : public ::testing::Test {
  protected:
    RecorderFixture() {
        std::filesystem::create_directories(stationPath());
        makeRecorder();
    }

    /// As after a crash or a new launch: nothing is carried over but what is on disk.
    void makeRecorder() {
        recorder_.reset();
        link_ = nullptr;
        markerLink_ = nullptr;
        recorder_ = std::make_unique<SVRecorder>(RecorderServices{
            .clock = clock_,
            .log = log_,
            .mainQueue = mainQueue_,
            .preferences = preferences_,
            .stationFolder = station_,
            .flusher = flusher_,
            .lineInput = input_,
            .makeAudioLink =
                [this] {
                    auto link = std::make_unique<FakeAudioLink>(linkLife_);
                    link_ = link.get();
                    return link;
                },
            .makeMarkerLink =
                [this] {
                    auto link = std::make_unique<FakeMarkerLink>(markerLinkLife_);
                    markerLink_ = link.get();
                    return link;
                },
            .makeMainTimer = [this] { return timers_.make(); },
        });
        recorder_->setController(host_);
    }

    std::filesystem::path stationPath() const { return temp_ / "home/Calderwave/Station"; }
    std::filesystem::path dayFile(const std::string& suffix,
                                  const std::string& date = "2026-03-02") const {
        return stationPath() / "Logs/Audio" / ("Sonavault_" + date + "." + suffix);
    }

    void chooseQuality(SVQualityLevel level) {
        preferences_.setInteger(kQualityLevelKey, level.rawValue());
    }

    void useLineInput() { recorder_->applySourceMode(SVRecorderSourceMode::lineInput); }
    void useLink() { recorder_->applySourceMode(SVRecorderSourceMode::cadenzoTCP); }

    void handshake(AudioFormat format = {22050, 1, true}) {
        linkFormat_ = format;
        link_->onHandshake(format);
        mainQueue_.runAll();
    }
    void dropLink() {
        link_->onDisconnect();
        mainQueue_.runAll();
    }

    /// What the automation tells, heard at once.
    void tell(const MarkerWire& marker) {
        markerLink_->onMarker(marker);
        mainQueue_.runAll();
    }

    /// A buffer of a tone, in the source's format, as both sources hand it over.
    void send(FrameCount frames, float amplitude = 0.5F) {
        const bool fromLink = recorder_->sourceMode() == SVRecorderSourceMode::cadenzoTCP;
        const AudioFormat format = fromLink ? linkFormat_ : input_.format;
        std::vector<float> samples(static_cast<std::size_t>(frames * format.channels));
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] =
                amplitude *
                std::sin(static_cast<float>(i / static_cast<std::size_t>(format.channels)) * 0.3F);
        const float* plane = samples.data();
        const AudioBufferView view{format, frames, &plane};
        if (fromLink)
            link_->onBuffer(view);
        else
            input_.deliver(view);
        mainQueue_.runAll();
    }

    /// Sends a tone in real time on the test's clock: each buffer arrives when its last frame was
    /// heard.
    void runFor(double seconds) {
        constexpr FrameCount kBuffer = 2205;
        const double rate = recorder_->sourceMode() == SVRecorderSourceMode::cadenzoTCP
                                ? linkFormat_.sampleRate
                                : input_.format.sampleRate;
        for (double done = 0; done < seconds - 1e-9; done += static_cast<double>(kBuffer) / rate) {
            timers_.pass(static_cast<double>(kBuffer) / rate);
            send(kBuffer);
        }
    }

    FrameCount framesWritten() const {
        return std::llround(recorder_->currentRecordingDurationSec() * 22050);
    }

    TempFolder temp_;
    const ScopedTimeZone zone_{"Europe/Berlin"};
    ManualClock clock_{at("2026-03-02T13:05:09.123Z")};
    ManualTimers timers_{clock_};
    RecordedLog log_;
    ManualQueue mainQueue_;
    Preferences preferences_{temp_ / "standard.conf"};
    const StationFolder station_{temp_ / "home", Preferences(temp_ / "shared.conf")};
    DiskFlusher flusher_;
    FakeLineInput input_;
    std::shared_ptr<RecordedHost> host_ = std::make_shared<RecordedHost>();
    FakeAudioLink* link_ = nullptr;
    LinkLife linkLife_;
    LinkLife markerLinkLife_;
    FakeMarkerLink* markerLink_ = nullptr;
    AudioFormat linkFormat_{22050, 1, true};
    std::unique_ptr<SVRecorder> recorder_;
};

}  // namespace sonavault::testing
