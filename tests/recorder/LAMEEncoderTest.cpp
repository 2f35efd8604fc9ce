#include "recorder/LAMEEncoder.h"

#include <gtest/gtest.h>
#include <lame/lame.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/AudioFileInfo.h"
#include "support/FileSizeLimit.h"
#include "support/RecordedLog.h"
#include "support/TempFolder.h"
#include "support/WholeFrames.h"

namespace sonavault {
namespace {

using testing::bytesOfWholeFrames;
using testing::FileSizeLimit;
using testing::readFile;
using testing::RecordedLog;
using testing::TempFolder;

class Encoder : public ::testing::Test {
  protected:
    std::unique_ptr<LAMEEncoder> opened(int kbps = 24) {
        auto encoder = LAMEEncoder::create(22050, 1, kbps, log_);
        EXPECT_TRUE(encoder);
        EXPECT_TRUE(encoder->open(file_, flusher_));
        return encoder;
    }

    static std::vector<float> tone(std::size_t frames) {
        std::vector<float> samples(frames);
        for (std::size_t i = 0; i < frames; ++i)
            samples[i] = 0.5F * std::sin(static_cast<float>(i) * 0.3F);
        return samples;
    }

    TempFolder temp_;
    RecordedLog log_;
    DiskFlusher flusher_;
    const std::filesystem::path file_ = temp_ / "day.mp3";
};

TEST_F(Encoder, refuses_settings_that_make_no_sense) {
    EXPECT_FALSE(LAMEEncoder::create(0, 1, 24, log_));
    EXPECT_FALSE(LAMEEncoder::create(-22050, 1, 24, log_));
    EXPECT_FALSE(LAMEEncoder::create(1'000'000'000, 1, 24, log_));
}

TEST_F(Encoder, writes_frames_from_the_first_byte_on_with_no_tag_and_no_header_frame) {
    auto encoder = opened(48);
    encoder->encodeMono(tone(22050));
    encoder->close();
    const auto bytes = readFile(file_);
    ASSERT_GT(bytes.size(), 1000U);
    EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 0xFF);
    EXPECT_EQ(static_cast<unsigned char>(bytes[1]) & 0xE0, 0xE0);
    for (const auto* tag : {"Xing", "Info", "LAME3.100", "ID3", "TAG"})
        EXPECT_EQ(bytes.substr(0, 200).find(tag), std::string::npos);
}

TEST_F(Encoder, writes_one_channel) {
    auto encoder = opened();
    encoder->encodeMono(tone(22050));
    encoder->close();
    const auto bytes = readFile(file_);
    ASSERT_GT(bytes.size(), 4U);
    EXPECT_EQ(static_cast<unsigned char>(bytes[3]) >> 6, 3) << "the frame header's channel mode";
}

/// What the library itself makes of these samples, at 22,050 Hz and 24 kbps.
std::string encodedByTheLibrary(const std::vector<float>& samples) {
    lame_global_struct* const library = lame_init();
    lame_set_in_samplerate(library, 22050);
    lame_set_num_channels(library, 1);
    lame_set_brate(library, 24);
    lame_set_mode(library, MONO);
    lame_set_quality(library, 5);
    lame_set_bWriteVbrTag(library, 0);
    lame_init_params(library);
    std::vector<unsigned char> out(samples.size() * 2 + 7200);
    const auto room = [&](int used) { return static_cast<int>(out.size()) - used; };
    int bytes =
        lame_encode_buffer_ieee_float(library, samples.data(), samples.data(),
                                      static_cast<int>(samples.size()), out.data(), room(0));
    bytes += lame_encode_flush(library, out.data() + bytes, room(bytes));
    lame_close(library);
    return {out.begin(), out.begin() + bytes};
}

TEST_F(Encoder, gives_the_library_what_is_merely_too_loud_as_it_is) {
    auto loud = tone(22050);
    for (float& sample : loud) sample *= 8;
    auto encoder = opened();
    encoder->encodeMono(loud);
    encoder->close();
    const auto expected = encodedByTheLibrary(loud);
    EXPECT_GT(expected.size(), 3000U);
    EXPECT_TRUE(readFile(file_) == expected);
    for (float& sample : loud) sample = std::clamp(sample, -1.0F, 1.0F);
    EXPECT_FALSE(encodedByTheLibrary(loud) == expected) << "cut off, it would be another stream";
}

TEST_F(Encoder, lets_the_library_choose_the_files_own_rate) {
    const std::pair<int, double> kRates[] = {
        {8, 8000}, {16, 16000}, {24, 16000}, {48, 22050}, {96, 22050}};
    for (const auto& [kbps, rate] : kRates) {
        std::filesystem::remove(file_);
        auto encoder = opened(kbps);
        encoder->encodeMono(tone(3 * 22050));
        encoder->close();
        const auto info = readAudioFileInfo(file_);
        ASSERT_TRUE(info) << info.error();
        EXPECT_EQ(info.value().sampleRate, rate) << kbps;
        EXPECT_NEAR(info.value().durationSec(), 3.0, 0.25) << kbps;
    }
}

TEST_F(Encoder, continues_a_file_and_never_shortens_it) {
    auto first = opened();
    first->encodeMono(tone(22050));
    first->close();
    const auto before = readFile(file_);
    auto second = opened();
    second->encodeMono(tone(22050));
    second->close();
    const auto after = readFile(file_);
    EXPECT_GT(after.size(), before.size());
    EXPECT_TRUE(after.starts_with(before));
}

TEST_F(Encoder, writes_as_it_goes_and_holds_back_only_what_the_library_holds) {
    auto encoder = opened();
    for (int i = 0; i < 20; ++i) encoder->encodeMono(tone(2205));
    const auto info = readAudioFileInfo(file_);
    ASSERT_TRUE(info);
    EXPECT_GT(info.value().durationSec(), 1.7);
    EXPECT_LT(info.value().durationSec(), 2.0);
}

::testing::AssertionResult isWholeFrames(const std::string& bytes) {
    const std::size_t end = bytesOfWholeFrames(bytes);
    if (end == bytes.size()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "a tear at byte " << end << " of " << bytes.size();
}

TEST_F(Encoder, leaves_whole_frames_wherever_it_is_stopped) {
    for (const int kbps : {8, 16, 24, 48, 96}) {
        std::filesystem::remove(file_);
        auto encoder = opened(kbps);
        std::size_t pieces = 0;
        std::string before;
        for (std::size_t frames = 100; frames < 4000; frames += 37) {
            encoder->encodeMono(tone(frames));
            auto bytes = readFile(file_);
            if (bytes.size() != before.size()) ++pieces;
            EXPECT_TRUE(bytes.starts_with(before));
            ASSERT_TRUE(isWholeFrames(bytes)) << kbps << " kbps";
            before = std::move(bytes);
        }
        EXPECT_GT(pieces, 50U) << kbps;
        encoder->close();
        EXPECT_TRUE(isWholeFrames(readFile(file_))) << kbps << " kbps, closed";
    }
}

TEST_F(Encoder, changes_no_byte_of_what_the_library_made) {
    const auto sound = tone(5 * 22050);
    auto encoder = opened();
    for (std::size_t at = 0; at < sound.size(); at += 441)
        encoder->encodeMono(std::span(sound).subspan(at, 441));
    encoder->close();
    EXPECT_TRUE(readFile(file_) == encodedByTheLibrary(sound));
}

TEST_F(Encoder, leaves_whole_frames_before_and_behind_a_full_disk) {
    for (const rlim_t space : {5000, 5001, 5050, 5107}) {
        std::filesystem::remove(file_);
        auto encoder = opened();
        {
            const FileSizeLimit disk(space);
            for (int i = 0; i < 50; ++i) encoder->encodeMono(tone(2205));
        }
        const auto full = readFile(file_);
        EXPECT_LE(full.size(), space);
        EXPECT_GT(full.size(), space - 500);
        EXPECT_TRUE(isWholeFrames(full)) << space;
        for (int i = 0; i < 20; ++i) encoder->encodeMono(tone(2205));
        encoder->close();
        const auto after = readFile(file_);
        EXPECT_GT(after.size(), full.size() + 4000);
        EXPECT_TRUE(after.starts_with(full));
        EXPECT_TRUE(isWholeFrames(after)) << space;
    }
}

TEST_F(Encoder, closed_twice_writes_nothing_more) {
    auto encoder = opened();
    encoder->encodeMono(tone(22050));
    encoder->close();
    const auto size = std::filesystem::file_size(file_);
    encoder->close();
    encoder->encodeMono(tone(22050));
    EXPECT_EQ(std::filesystem::file_size(file_), size);
}

TEST_F(Encoder, is_flushed_and_closed_when_it_goes) {
    std::uintmax_t unflushed = 0;
    {
        auto encoder = opened();
        encoder->encodeMono(tone(22050));
        unflushed = std::filesystem::file_size(file_);
    }
    EXPECT_GT(std::filesystem::file_size(file_), unflushed);
}

TEST_F(Encoder, closed_before_any_sound_leaves_an_empty_file) {
    opened()->close();
    EXPECT_TRUE(std::filesystem::exists(file_));
    EXPECT_EQ(std::filesystem::file_size(file_), 0U);
}

TEST_F(Encoder, not_open_encodes_nothing) {
    auto encoder = LAMEEncoder::create(22050, 1, 24, log_);
    encoder->encodeMono(tone(22050));
    encoder->close();
    EXPECT_FALSE(std::filesystem::exists(file_));
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(Encoder, takes_a_buffer_of_any_length) {
    auto encoder = opened();
    encoder->encodeMono({});
    encoder->encodeMono(tone(1));
    encoder->encodeMono(tone(300'000));
    encoder->close();
    const auto info = readAudioFileInfo(file_);
    ASSERT_TRUE(info);
    EXPECT_NEAR(info.value().durationSec(), 300'001 / 22050.0, 0.15);
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(Encoder, is_not_harmed_by_samples_that_are_no_numbers_or_absurd) {
    auto encoder = opened();
    std::vector<float> bad(4096, std::numeric_limits<float>::quiet_NaN());
    for (std::size_t i = 0; i < bad.size(); i += 3) bad[i] = std::numeric_limits<float>::infinity();
    for (std::size_t i = 1; i < bad.size(); i += 3) bad[i] = -3e38F;
    for (int i = 0; i < 50; ++i) encoder->encodeMono(bad);
    encoder->close();
    const auto info = readAudioFileInfo(file_);
    ASSERT_TRUE(info) << info.error();
    EXPECT_NEAR(info.value().durationSec(), 50 * 4096 / 22050.0, 0.15);
}

TEST_F(Encoder, tells_why_a_file_cannot_be_opened) {
    auto encoder = LAMEEncoder::create(22050, 1, 24, log_);
    std::filesystem::create_directory(file_);
    const auto opened = encoder->open(file_, flusher_);
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error(), "Is a directory");
}

}  // namespace
}  // namespace sonavault
