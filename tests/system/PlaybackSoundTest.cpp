// A day as it is really heard: through a sound server, from the monitor of its loudspeakers.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <iostream>
#include <memory>
#include <vector>

#include "platform/CubebOutput.h"
#include "review/ReviewFixture.h"
#include "support/Eventually.h"
#include "support/Ffmpeg.h"
#include "support/PrivateSoundServer.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr int kRate = 16000;
constexpr int kBlockFrames = 1600;
constexpr double kOffset = 23415;

// The server keeps samples of 16 bits.
constexpr float kRounding = 1.5F / 32768;

// What counts as sound, well above rounding.
constexpr float kAudible = 0.01F;

class PlaybackSoundTest : public ReviewFixture {
  protected:
    PlaybackSoundTest() {
        sound_.exportEnvironment();
        output_ = std::make_unique<CubebOutput>();
        playback_ = std::make_unique<Playback>(window_, day_, peaks_, *output_, systemClock_, log_);
        window_.playback = playback_.get();
    }
    ~PlaybackSoundTest() override { window_.playback = nullptr; }

    void beginListening(double fileSeconds) {
        sound_.start();
        sound_.listenTo();
        ASSERT_TRUE(awaitFrames(1)) << sound_.output();
        playback_->setupAudioEngine();
        const auto file = fileOf("2026-05-07");
        std::filesystem::create_directories(file.parent_path());
        encodeWithFfmpeg(file, lively(fileSeconds), "-ac 1 -ar 16000 -b:a 24k");
        haveManifest("2026-05-07", kOffset);
        day_.loadRecording(file);
        ASSERT_TRUE(day_.loadedFile());
    }

    std::vector<float> decodedFrom(double fileSec, double seconds) {
        auto decoder = std::move(AudioDecoder::open(fileOf("2026-05-07")).value());
        decoder->seek(std::llround(fileSec * kRate));
        std::vector<float> samples(static_cast<std::size_t>(seconds * kRate));
        float* const plane = samples.data();
        samples.resize(static_cast<std::size_t>(
            decoder->read({&plane, 1}, static_cast<FrameCount>(samples.size()))));
        return samples;
    }

    std::vector<float> heard(std::size_t side) const {
        const auto all = sound_.heard();
        std::vector<float> samples;
        for (std::size_t i = side; i < all.size(); i += 2) samples.push_back(all[i]);
        return samples;
    }

    /// Whether so many frames more are heard in time.
    bool awaitFrames(std::size_t frames, std::chrono::seconds patience = 60s) const {
        const auto enough = heard(0).size() + frames;
        return eventually([&] { return heard(0).size() >= enough; }, patience);
    }

    static std::size_t firstAudible(const std::vector<float>& samples) {
        return static_cast<std::size_t>(
            std::find_if(samples.begin(), samples.end(),
                         [](float sample) { return std::abs(sample) > kAudible; }) -
            samples.begin());
    }

    /// Where in `all` the block is found; negative when it is not.
    static std::ptrdiff_t placeOf(const std::vector<float>& block, const std::vector<float>& all) {
        const auto close = [](float a, float b) { return std::abs(a - b) < kRounding; };
        const auto at = std::search(all.begin(), all.end(), block.begin(), block.end(), close);
        return at == all.end() ? -1 : at - all.begin();
    }

    PrivateSoundServer sound_{PrivateSoundServer::Devices{kRate, 2, true}};
    SystemClock systemClock_;
    std::unique_ptr<CubebOutput> output_;
    std::unique_ptr<Playback> playback_;
};

TEST_F(PlaybackSoundTest, is_the_decoded_day_at_its_place_and_level_without_a_dropout) {
    constexpr double kFrom = 5.25;
    constexpr double kListened = 20;
    beginListening(30);
    playback_->startPlayback({kOffset + kFrom});
    ASSERT_TRUE(awaitFrames(static_cast<std::size_t>((kListened + 2) * kRate)));
    const auto expected = decodedFrom(kFrom, kListened);
    for (const std::size_t side : {0U, 1U}) {
        const auto samples = heard(side);
        const auto begin = firstAudible(samples) - firstAudible(expected);
        ASSERT_GE(samples.size(), begin + expected.size());
        std::vector<std::size_t> wrong;
        for (std::size_t i = 0; i < expected.size(); ++i)
            if (std::abs(samples[begin + i] - expected[i]) > kRounding) wrong.push_back(i);
        EXPECT_TRUE(wrong.empty()) << wrong.size() << " samples, the first at " << wrong.front()
                                   << " of " << expected.size() << " samples, side " << side;
    }
}

TEST_F(PlaybackSoundTest, is_back_at_the_playhead_after_the_server_died_in_mid_play) {
    beginListening(60);
    playback_->startPlayback({kOffset});
    ASSERT_TRUE(awaitFrames(2 * kRate));
    playback_->advancePlayhead();
    sound_.kill();
    ASSERT_FALSE(awaitFrames(1, 3s)) << "an outage of 3 s";
    sound_.start();
    sound_.listenTo();

    const auto all = decodedFrom(0, 60);
    const auto giveUp = std::chrono::steady_clock::now() + 15s;
    double lateBy = 1e9;
    while (std::abs(lateBy) > 0.5 && std::chrono::steady_clock::now() < giveUp) {
        awaitFrames(kBlockFrames, 1s);
        playback_->advancePlayhead();
        const auto samples = heard(0);
        const std::vector<float> block(samples.end() - kBlockFrames, samples.end());
        if (firstAudible(block) == block.size()) continue;
        const auto place = placeOf(block, all);
        if (place < 0) continue;
        lateBy = day_.playheadSec() - kOffset - static_cast<double>(place) / kRate;
        std::cout << "heard " << lateBy << " s behind the playhead\n";
    }
    EXPECT_LE(std::abs(lateBy), 0.5);
    EXPECT_TRUE(playback_->isPlaying());
}

}  // namespace
}  // namespace sonavault::testing
