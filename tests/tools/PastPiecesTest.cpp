#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numeric>

#include "pastdays/LegacySound.h"
#include "pastdays/Mp3Pieces.h"
#include "pastdays/Song.h"
#include "pastdays/Speech.h"
#include "support/RecordedLog.h"
#include "tools/PastDaysFixture.h"

namespace sonavault::pastdays {
namespace {

using sonavault::testing::readFile;
using sonavault::testing::RecordedLog;
using sonavault::testing::TempFolder;

class PastPieces : public ::testing::Test {
  protected:
    std::vector<Piece> pieces() {
        Mp3Pieces format(folder_.path(), flusher_, log_);
        auto made = makePieces(shortMaterial().recipes, format);
        EXPECT_TRUE(made) << made.error();
        EXPECT_TRUE(log_.lines().empty());
        return made ? std::move(made.value()) : std::vector<Piece>();
    }

    /// A file of pieces one behind the other.
    std::filesystem::path fileOf(const std::string& name,
                                 const std::vector<std::span<const std::uint8_t>>& parts) {
        std::ofstream stream(folder_ / name, std::ios::binary);
        for (const auto& part : parts)
            stream.write(reinterpret_cast<const char*>(part.data()),
                         static_cast<std::streamsize>(part.size()));
        return folder_ / name;
    }

    /// What another decoder has to say against a file; empty when nothing.
    std::string complaintsAbout(const std::filesystem::path& file) {
        const auto words = folder_ / "words";
        const std::string command = "ffmpeg -nostdin -v error -xerror -i '" + file.string() +
                                    "' -f null - 2>'" + words.string() + "'";
        const int exitCode = std::system(command.c_str());
        return readFile(words) + (exitCode == 0 ? "" : "it ended with an error");
    }

    const TempFolder folder_;
    RecordedLog log_;
    DiskFlusher flusher_;
};

constexpr std::size_t kSamplesPerFrame = 576;

TEST_F(PastPieces, take_no_bits_from_what_stands_before_them) {
    for (const Piece& piece : pieces()) {
        ASSERT_GT(piece.sound.frames(), 0);
        // In a header of this version, how far back the sound of a frame begins is the byte behind
        // the four of the header.
        EXPECT_EQ(piece.sound.frame(0)[4], 0);
    }
}

TEST_F(PastPieces, sound_the_same_behind_any_other) {
    const auto all = pieces();
    const EncodedSound& song = all.front().sound;
    for (const Piece& piece : all) {
        const auto frames = static_cast<std::size_t>(piece.sound.frames());
        const auto whole = piece.sound.first(piece.sound.frames());
        const auto alone = decoded(fileOf("alone.mp3", {whole}));
        // Behind the beginning of a song, which leaves bits of its next frames unused.
        constexpr std::size_t kBefore = 100;
        const auto behind = decoded(fileOf("behind.mp3", {song.first(kBefore), whole}));
        ASSERT_EQ(alone.size(), frames * kSamplesPerFrame);
        ASSERT_EQ(behind.size(), (kBefore + frames) * kSamplesPerFrame);
        // A decoder lets what came before ring on into two frames.
        for (std::size_t i = 2 * kSamplesPerFrame; i < alone.size(); ++i)
            ASSERT_EQ(alone[i], behind[kBefore * kSamplesPerFrame + i]) << i;
    }
}

TEST_F(PastPieces, leave_another_decoder_content_wherever_they_are_cut) {
    std::vector<std::span<const std::uint8_t>> parts;
    const auto all = pieces();
    std::int64_t cut = 1;
    for (int round = 0; round < 20; ++round)
        for (const Piece& piece : all)
            parts.push_back(piece.sound.first(cut = 1 + (cut * 7 + 3) % piece.sound.frames()));
    EXPECT_EQ(complaintsAbout(fileOf("cut.mp3", parts)), "");
    // The judge does judge: a frame whose description of its sound is senseless is told.
    const auto whole = all.front().sound.first(20);
    std::vector<std::uint8_t> damaged(whole.begin(), whole.end());
    std::fill_n(damaged.begin() + 10 * 108 + 5, 9, std::uint8_t{0xFF});
    EXPECT_NE(complaintsAbout(fileOf("damaged.mp3", {damaged})), "");
}

TEST_F(PastPieces, begin_their_silence_with_a_frame_without_sound) {
    for (const Piece& piece : pieces()) {
        if (piece.kind != PieceKind::silence) continue;
        const auto frame = piece.sound.first(1);
        for (const float sample : decoded(fileOf("silence.mp3", {frame, frame, frame})))
            ASSERT_EQ(sample, 0);
    }
}

TEST_F(PastPieces, refuse_a_stream_with_something_between_its_frames) {
    const auto all = pieces();
    const auto whole = all.front().sound.first(10);
    std::vector<std::uint8_t> stream(whole.begin(), whole.end());
    EXPECT_EQ(framesOf(stream).value().frames(), 10);
    stream.push_back(0);
    EXPECT_FALSE(framesOf(stream));
    stream.erase(stream.end() - 2, stream.end());
    EXPECT_FALSE(framesOf(stream));
}

double rms(std::span<const float> samples) {
    double energy = 0;
    for (const float sample : samples) energy += static_cast<double>(sample) * sample;
    return std::sqrt(energy / static_cast<double>(samples.size()));
}

/// The share of a sound in which nothing is heard beside the rest of it.
double pauseShare(const Samples& samples) {
    constexpr std::size_t kWindow = kSampleRate / 20;
    const double threshold = rms(samples) / 30;
    int pauses = 0;
    int windows = 0;
    for (std::size_t at = 0; at + kWindow <= samples.size(); at += kWindow, ++windows)
        pauses += rms(std::span(samples).subspan(at, kWindow)) < threshold;
    return static_cast<double>(pauses) / windows;
}

TEST(PastSounds, tell_talk_from_music_by_its_pauses) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        EXPECT_GT(pauseShare(talk(seed, {0.8 + 0.1 * seed, -18}, 20)), 0.08) << seed;
        EXPECT_GT(pauseShare(conversation(seed, 20)), 0.08) << seed;
        EXPECT_LT(pauseShare(song(seed, Mood::lively, 40)), 0.02) << seed;
        EXPECT_LT(pauseShare(song(seed, Mood::quiet, 40)), 0.02) << seed;
    }
}

TEST(PastSounds, are_as_loud_as_asked_and_never_break_at_full_scale) {
    for (const Recipe& recipe : shortMaterial().recipes) {
        const Samples samples = soundOf(recipe);
        EXPECT_EQ(samples.size() / kSampleRate, static_cast<std::size_t>(recipe.seconds));
        for (const float sample : samples) ASSERT_LE(std::abs(sample), 1);
        const double dBFS = 20 * std::log10(rms(samples));
        if (recipe.kind == PieceKind::silence)
            EXPECT_EQ(rms(samples), 0);
        else
            EXPECT_TRUE(dBFS > -27 && dBFS < -11) << recipe.seed << ": " << dBFS;
    }
}

TEST(PastSounds, make_quiet_songs_softer_and_fade_all_of_them_out) {
    const Samples quiet = song(3, Mood::quiet, 60);
    const Samples lively = song(3, Mood::lively, 60);
    EXPECT_LT(rms(quiet), 0.7 * rms(lively));
    for (const Samples& samples : {quiet, lively}) {
        const std::span<const float> all(samples);
        EXPECT_LT(rms(all.last(kSampleRate / 2)), 0.2 * rms(all));
    }
}

TEST(PastSounds, give_each_seed_a_song_of_its_own) {
    EXPECT_EQ(song(4, Mood::lively, 5), song(4, Mood::lively, 5));
    EXPECT_NE(song(4, Mood::lively, 5), song(5, Mood::lively, 5));
}

TEST(AacPieces, hold_all_of_their_sound) {
    AacPieces format;
    const auto pieces = makePieces(shortMaterial().legacyRecipes, format);
    ASSERT_TRUE(pieces) << pieces.error();
    const auto recipes = shortMaterial().legacyRecipes;
    for (std::size_t i = 0; i < recipes.size(); ++i) {
        const double seconds =
            static_cast<double>(pieces.value()[i].sound.frames()) * format.frameSec();
        EXPECT_GE(seconds, recipes[i].seconds);
        EXPECT_LT(seconds, recipes[i].seconds + 3 * format.frameSec());
    }
}

}  // namespace
}  // namespace sonavault::pastdays
