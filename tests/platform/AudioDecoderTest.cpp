#include "platform/AudioDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "platform/AudioFileInfo.h"
#include "platform/SampleMath.h"
#include "support/Ffmpeg.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

std::unique_ptr<AudioDecoder> open(const std::filesystem::path& file) {
    auto decoder = AudioDecoder::open(file);
    if (!decoder) throw std::runtime_error(decoder.error());
    return std::move(decoder.value());
}

/// As many frames of the first channel as there are from here on, up to `most`.
std::vector<float> take(AudioDecoder& decoder, FrameCount most) {
    std::vector<float> samples(static_cast<std::size_t>(most));
    float* const plane = samples.data();
    samples.resize(static_cast<std::size_t>(decoder.read({&plane, 1}, most)));
    return samples;
}

std::vector<float> takeAll(const std::filesystem::path& file) {
    const auto decoder = open(file);
    return take(*decoder, decoder->length() + 1);
}

FrameCount lengthOf(const std::filesystem::path& file) {
    return readAudioFileInfo(file).value().frames;
}

float largestDifference(const std::vector<float>& one, const std::vector<float>& other) {
    float largest = 0;
    for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i)
        largest = std::max(largest, std::abs(one[i] - other[i]));
    return largest;
}

/// The frequency of a tone, told by how often it crosses zero upwards.
double hertzOf(std::span<const float> samples, double sampleRate) {
    int crossings = 0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        crossings += samples[i - 1] < 0 && samples[i] >= 0;
    return crossings * sampleRate / static_cast<double>(samples.size());
}

class AudioDecoderOf : public ::testing::Test {
  protected:
    std::filesystem::path made(const std::string& name, const std::string& sound,
                               const std::string& options) const {
        encodeWithFfmpeg(folder / name, sound, options);
        return folder / name;
    }
    TempFolder folder;
};

TEST_F(AudioDecoderOf, a_day_gives_the_samples_that_another_decoder_gives) {
    const auto file = made("a.mp3", lively(20), "-ac 1 -ar 16000 -b:a 24k");
    const auto expected = decodeWithFfmpeg(file);
    const auto samples = takeAll(file);
    EXPECT_EQ(samples.size(), expected.size());
    EXPECT_EQ(samples.size(), static_cast<std::size_t>(lengthOf(file)));
    EXPECT_LT(largestDifference(samples, expected), 1e-6F);
    EXPECT_GT(rootMeanSquare(samples), 0.05F);
}

class AudioDecoderAt : public ::testing::TestWithParam<const char*> {};

TEST_P(AudioDecoderAt, gives_the_same_samples_from_any_position_as_from_the_beginning) {
    const TempFolder folder;
    const auto file = folder / "a.mp3";
    encodeWithFfmpeg(file, lively(40), GetParam());
    const auto expected = takeAll(file);
    const auto decoder = open(file);
    std::mt19937 random(7);
    for (int i = 0; i < 400; ++i) {
        const auto position = static_cast<FrameCount>(random() % expected.size());
        decoder->seek(position);
        const auto samples = take(*decoder, 1500);
        ASSERT_TRUE(std::equal(samples.begin(), samples.end(), expected.begin() + position))
            << position;
        ASSERT_EQ(samples.size(), std::min<std::size_t>(
                                      1500, expected.size() - static_cast<std::size_t>(position)));
    }
}

INSTANTIATE_TEST_SUITE_P(EveryQuality, AudioDecoderAt,
                         ::testing::Values("-ac 1 -ar 8000 -b:a 8k", "-ac 1 -ar 16000 -b:a 16k",
                                           "-ac 1 -ar 16000 -b:a 24k", "-ac 1 -ar 22050 -b:a 48k",
                                           "-ac 1 -ar 22050 -b:a 96k", "-ac 1 -ar 24000 -b:a 8k",
                                           "-ac 2 -ar 44100 -b:a 64k"));

TEST_F(AudioDecoderOf, a_day_goes_on_without_a_seam_when_told_to_seek_to_where_it_is) {
    const auto file = made("a.mp3", lively(5), "-ac 1 -ar 16000 -b:a 24k");
    const auto expected = takeAll(file);
    const auto decoder = open(file);
    std::vector<float> samples;
    for (FrameCount at = 0; at < decoder->length(); at += 777) {
        decoder->seek(at);
        const auto piece = take(*decoder, 777);
        samples.insert(samples.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(samples, expected);
}

TEST_F(AudioDecoderOf, a_day_gives_nothing_at_its_end_and_takes_seeks_beyond_to_its_ends) {
    const auto file = made("a.mp3", lively(2), "-ac 1 -ar 16000 -b:a 24k");
    const auto decoder = open(file);
    decoder->seek(decoder->length() + 1000);
    EXPECT_EQ(decoder->next(100).frames, 0);
    decoder->seek(-1000);
    EXPECT_EQ(decoder->next(100).position, 0);
    decoder->seek(decoder->length() - 1);
    EXPECT_EQ(decoder->next(100).frames, 1);
    EXPECT_EQ(decoder->next(100).frames, 0);
}

TEST_F(AudioDecoderOf, a_stereo_file_gives_both_channels_and_a_mono_file_one_for_both) {
    const auto stereo =
        made("s.mp3", "sine=f=400:d=3[a];sine=f=900:d=3[b];[a][b]amerge", "-ar 44100 -b:a 128k");
    const auto mono = made("m.mp3", "sine=f=400:d=3", "-ac 1 -ar 44100 -b:a 64k");
    std::vector<float> left(44100);
    std::vector<float> right(44100);
    const std::array<float*, 2> planes{left.data(), right.data()};

    const auto two = open(stereo);
    EXPECT_EQ(two->channels(), 2);
    two->seek(44100);
    ASSERT_EQ(two->read(planes, 44100), 44100);
    EXPECT_NEAR(hertzOf(left, 44100), 400, 2);
    EXPECT_NEAR(hertzOf(right, 44100), 900, 2);

    const auto one = open(mono);
    EXPECT_EQ(one->channels(), 1);
    one->seek(44100);
    ASSERT_EQ(one->read(planes, 44100), 44100);
    EXPECT_EQ(left, right);
}

TEST_F(AudioDecoderOf, a_day_with_seams_is_as_long_as_its_headers_say) {
    const std::string tone = readFile(made("a.mp3", "sine=f=440:d=2", "-ac 1 -ar 16000 -b:a 24k"));
    const auto file = folder / "day.mp3";
    SyntheticMp3 junk;
    junk.junk(321);
    writeFile(file, tone + tone.substr(0, 54) + tone + junk.bytes() + tone);
    const auto samples = takeAll(file);
    EXPECT_EQ(static_cast<FrameCount>(samples.size()), lengthOf(file));
    EXPECT_EQ(samples.size(), 3 * tone.size() / 108 * 576);
    // Each of the three recordings is heard in its place.
    for (const std::size_t second : {1U, 3U, 5U})
        EXPECT_NEAR(hertzOf(std::span(samples).subspan(second * 16000 + 1500, 8000), 16000), 440,
                    4);
}

TEST_F(AudioDecoderOf, a_day_whose_rate_changes_goes_on_at_the_first_rate) {
    const std::string slow = readFile(made("a.mp3", "sine=f=440:d=4", "-ac 1 -ar 16000 -b:a 24k"));
    const std::string fast = readFile(made("b.mp3", "sine=f=440:d=4", "-ac 1 -ar 22050 -b:a 48k"));
    const auto file = folder / "day.mp3";
    writeFile(file, slow + fast + slow);
    const auto samples = takeAll(file);
    EXPECT_EQ(static_cast<FrameCount>(samples.size()), lengthOf(file));
    for (const std::size_t second : {1U, 5U, 10U}) {
        const auto part = std::span(samples).subspan(second * 16000, 16000);
        EXPECT_NEAR(hertzOf(part, 16000), 440, 2) << second;
        EXPECT_NEAR(rootMeanSquare(part), 0.0884F, 0.01F) << second;
    }
    const auto decoder = open(file);
    std::mt19937 random(3);
    for (int i = 0; i < 200; ++i) {
        const auto position = static_cast<FrameCount>(random() % samples.size());
        decoder->seek(position);
        const auto piece = take(*decoder, 1000);
        ASSERT_TRUE(std::equal(piece.begin(), piece.end(), samples.begin() + position)) << position;
    }
}

TEST_F(AudioDecoderOf, what_does_not_decode_is_silence_of_its_length) {
    SyntheticMp3 mp3;
    const auto file = folder / "day.mp3";
    std::string bytes = mp3.frames(50).bytes();
    // Sound that claims more bits than the frame has.
    for (std::size_t at = 20 * 108 + 4; at < 21 * 108; ++at) bytes[at] = '\x7E';
    writeFile(file, bytes);
    const auto samples = takeAll(file);
    EXPECT_EQ(samples.size(), 50U * 576);
    for (const float sample : std::span(samples).first(20 * 576)) ASSERT_EQ(sample, 0);
    for (const float sample : std::span(samples).last(25 * 576)) ASSERT_EQ(sample, 0);
}

TEST_F(AudioDecoderOf, a_damaged_day_is_as_long_as_its_headers_say_and_silent_in_the_log) {
    const std::string sound = readFile(made("a.mp3", lively(4), "-ac 1 -ar 16000 -b:a 24k"));
    const auto file = folder / "day.mp3";
    std::mt19937 random(11);
    ::testing::internal::CaptureStderr();
    ::testing::internal::CaptureStdout();
    for (int round = 0; round < 60; ++round) {
        std::string bytes = sound;
        for (int i = 0; i < 40; ++i) bytes[random() % bytes.size()] = static_cast<char>(random());
        writeFile(file, bytes);
        EXPECT_EQ(static_cast<FrameCount>(takeAll(file).size()), lengthOf(file)) << round;
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(AudioDecoderOf, a_file_that_is_cut_short_meanwhile_is_silent_from_there) {
    const auto file = made("a.mp3", lively(60), "-ac 1 -ar 22050 -b:a 96k");
    const auto decoder = open(file);
    take(*decoder, 22050);
    std::filesystem::resize_file(file, 300'000);
    const auto rest = take(*decoder, decoder->length());
    EXPECT_EQ(static_cast<FrameCount>(rest.size()), decoder->length() - 22050);
    EXPECT_EQ(rootMeanSquare(std::span(rest).last(22050)), 0);
}

TEST_F(AudioDecoderOf, a_day_that_grows_ends_where_it_ended_when_it_was_opened) {
    const std::string sound = readFile(made("a.mp3", lively(4), "-ac 1 -ar 16000 -b:a 24k"));
    const auto file = folder / "day.mp3";
    writeFile(file, sound.substr(0, 108 * 50));
    const auto decoder = open(file);
    writeFile(file, sound);
    EXPECT_EQ(take(*decoder, 1'000'000).size(), 50U * 576);
}

TEST_F(AudioDecoderOf, what_is_no_sound_is_an_error_in_words) {
    writeFile(folder / "empty.mp3", "");
    writeFile(folder / "text.mp3", "A text is no sound.\n");
    writeFile(folder / "ff.mp3", std::string(1 << 20, '\xFF'));
    writeFile(folder / "torn.mp3", SyntheticMp3().tornFrame(100).bytes());
    for (const auto* name : {"empty.mp3", "text.mp3", "ff.mp3", "torn.mp3"})
        EXPECT_EQ(AudioDecoder::open(folder / name).error(), "The file holds no MPEG audio frame");
    EXPECT_EQ(AudioDecoder::open(folder / "none.mp3").error(), "No such file or directory");
}

TEST_F(AudioDecoderOf, a_legacy_day_has_the_length_that_was_recorded) {
    const auto file = made("a.M4A", "sine=f=440:r=22050:d=5", "-f mp4 -ac 1 -c:a aac");
    const auto info = readAudioFileInfo(file);
    ASSERT_TRUE(info);
    EXPECT_EQ(info.value().frames, 5 * 22050);
    EXPECT_EQ(info.value().sampleRate, 22050);
}

TEST_F(AudioDecoderOf, a_legacy_day_gives_the_samples_that_another_decoder_gives) {
    const auto file = made("a.m4a", lively(8), "-ac 1 -ar 22050 -c:a aac");
    const auto expected = decodeWithFfmpeg(file);
    const auto samples = takeAll(file);
    EXPECT_EQ(samples.size(), 8U * 22050);
    EXPECT_GE(expected.size(), samples.size());
    EXPECT_LT(largestDifference(samples, expected), 1e-5F);
    EXPECT_GT(rootMeanSquare(samples), 0.05F);
}

TEST_F(AudioDecoderOf, a_legacy_day_is_heard_from_any_position) {
    const auto file = made("a.m4a", "sine=f=440:d=20", "-ac 2 -ar 44100 -c:a aac -aac_pns 0");
    const auto expected = takeAll(file);
    const auto decoder = open(file);
    EXPECT_EQ(decoder->channels(), 2);
    std::mt19937 random(5);
    for (int i = 0; i < 100; ++i) {
        const auto position = static_cast<FrameCount>(random() % expected.size());
        decoder->seek(position);
        const auto samples = take(*decoder, 3000);
        for (std::size_t at = 0; at < samples.size(); ++at)
            ASSERT_NEAR(samples[at], expected[static_cast<std::size_t>(position) + at], 1e-5F)
                << position << " + " << at;
    }
}

TEST_F(AudioDecoderOf, a_legacy_day_without_a_packet_is_empty) {
    const auto file =
        made("a.m4a", "anullsrc=r=22050:cl=mono", "-t 0 -c:a aac -movflags empty_moov");
    EXPECT_EQ(lengthOf(file), 0);
    const auto decoder = open(file);
    EXPECT_EQ(decoder->length(), 0);
    EXPECT_EQ(decoder->next(100).frames, 0);
}

TEST_F(AudioDecoderOf, a_legacy_day_that_is_cut_or_damaged_gives_an_error_or_its_length) {
    const std::string bytes =
        readFile(made("a.m4a", lively(3), "-ac 1 -ar 22050 -c:a aac -movflags faststart"));
    const auto file = folder / "bad.m4a";
    const auto check = [&](const std::string& content) {
        writeFile(file, content);
        const auto decoder = AudioDecoder::open(file);
        if (!decoder) {
            EXPECT_FALSE(decoder.error().empty());
            return false;
        }
        // Told lengths are not believed beyond what the packets can hold.
        EXPECT_LE(decoder.value()->length(), 200 * 16384);
        const auto samples = take(*decoder.value(), decoder.value()->length());
        EXPECT_EQ(static_cast<FrameCount>(samples.size()), decoder.value()->length());
        return true;
    };
    int opened = 0;
    for (std::size_t cut = 0; cut < bytes.size(); cut += 211) opened += check(bytes.substr(0, cut));
    EXPECT_GT(opened, 20);
    std::mt19937 random(13);
    for (int round = 0; round < 300; ++round) {
        std::string damaged = bytes;
        for (int i = 0; i < 3; ++i) damaged[random() % 2500] = static_cast<char>(random());
        check(damaged);
    }
}

TEST_F(AudioDecoderOf, a_legacy_day_of_a_senseless_rate_is_an_error_in_words) {
    const auto highest = made("192.m4a", "anullsrc=r=192000:cl=mono", "-t 1 -f mov -c:a pcm_s16le");
    EXPECT_EQ(lengthOf(highest), 192000);
    const auto beyond = made("384.m4a", "anullsrc=r=384000:cl=mono", "-t 1 -f mov -c:a pcm_s16le");
    EXPECT_EQ(readAudioFileInfo(beyond).error(),
              "The file's sound track has a senseless sample rate");
    EXPECT_FALSE(AudioDecoder::open(beyond));
}

TEST_F(AudioDecoderOf, what_is_no_legacy_day_is_an_error_in_words) {
    writeFile(folder / "empty.m4a", "");
    writeFile(folder / "text.m4a", "A text is no sound.\n");
    writeFile(folder / "list.m4a", "#EXTM3U\n#EXTINF:10,\nfile:///etc/passwd\n");
    std::filesystem::create_directory(folder / "folder.m4a");
    for (const auto* name : {"empty.m4a", "text.m4a", "list.m4a", "folder.m4a"})
        EXPECT_FALSE(readAudioFileInfo(folder / name).error().empty()) << name;
    EXPECT_EQ(readAudioFileInfo(folder / "none.m4a").error(), "No such file or directory");
    EXPECT_EQ(readAudioFileInfo(folder / "folder.m4a").error(), "Is a directory");
}

}  // namespace
}  // namespace sonavault::testing
