#include "export/Mp3FrameWalk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "export/LiteralFrameWalk.h"
#include "support/SyntheticMp3.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::span<const std::uint8_t> spanOf(const std::string& bytes) {
    return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

Selection selection(double start, double end) {
    return Selection{.startSec = start, .endSec = end};
}

std::string cut(const std::string& file, const std::vector<Selection>& selections,
                std::int64_t step = Mp3FrameWalk::kStepBytes) {
    const auto spans = mergedSpans(selections, DaySeconds{0});
    Mp3FrameWalk walk(spanOf(file), spans);
    while (walk.walkOn(step)) {
    }
    std::string out;
    for (const auto& range : walk.found())
        out += file.substr(static_cast<std::size_t>(range.begin),
                           static_cast<std::size_t>(range.size()));
    return out;
}

std::string literalCut(const std::string& file, const std::vector<Selection>& selections) {
    std::vector<LiteralFrameWalk::Pair> pairs;
    for (const auto& each : selections) pairs.emplace_back(each.lowSec(), each.highSec());
    return LiteralFrameWalk::cut(file, pairs);
}

/// The running sum up to the end of the first `count` frames of one kind.
double timeOf(int count, double duration) {
    double time = 0;
    for (int i = 0; i < count; ++i) time += duration;
    return time;
}

std::string header(int second, int third) {
    std::string bytes{static_cast<char>(0xFF), static_cast<char>(second), static_cast<char>(third)};
    return bytes + '\x64';
}

std::optional<MP3FrameInfo> parsed(const std::string& bytes, std::int64_t offset = 0) {
    return parseMP3FrameAt(spanOf(bytes), offset);
}

TEST(ParseMp3FrameAt, tells_size_and_duration_of_a_frame_of_mpeg_1) {
    EXPECT_EQ(parsed(header(0xFB, 0x90)), (MP3FrameInfo{417, 1152.0 / 44100}));
    EXPECT_EQ(parsed(header(0xFB, 0x92)), (MP3FrameInfo{418, 1152.0 / 44100}));
}

TEST(ParseMp3FrameAt, tells_size_and_duration_of_a_frame_of_mpeg_2) {
    EXPECT_EQ(parsed(header(0xF3, 0x80)), (MP3FrameInfo{208, 576.0 / 22050}));
    EXPECT_EQ(parsed(header(0xF3, 0x82)), (MP3FrameInfo{209, 576.0 / 22050}));
}

TEST(ParseMp3FrameAt, divides_the_rate_by_four_for_mpeg_2_5) {
    EXPECT_EQ(parsed(header(0xE3, 0x80)), (MP3FrameInfo{417, 576.0 / 11025}));
}

TEST(ParseMp3FrameAt, refuses_what_is_no_frame_of_known_size) {
    EXPECT_FALSE(parsed(header(0xFB, 0x00)));  // free format
    EXPECT_FALSE(parsed(header(0xFB, 0xF0)));  // bad bitrate
    EXPECT_FALSE(parsed(header(0xFB, 0x9C)));  // reserved rate
    EXPECT_FALSE(parsed(header(0xEB, 0x90)));  // reserved version
    EXPECT_FALSE(parsed(header(0xF9, 0x90)));  // reserved layer
    EXPECT_FALSE(parsed(header(0xFD, 0x90)));  // Layer II
    EXPECT_FALSE(parsed(header(0xFF, 0x90)));  // Layer I
    EXPECT_FALSE(parsed(header(0xDB, 0x90)));  // no sync
}

TEST(ParseMp3FrameAt, wants_four_bytes_and_looks_at_three) {
    const std::string frame = header(0xFB, 0x90);
    EXPECT_FALSE(parsed(frame.substr(0, 3)));
    EXPECT_FALSE(parsed(frame, 1));
    EXPECT_FALSE(parsed(frame, 4));
    EXPECT_FALSE(parsed(frame, -1));
    EXPECT_FALSE(parsed(""));
    for (int fourth = 0; fourth < 256; ++fourth)
        EXPECT_TRUE(parsed(frame.substr(0, 3) + static_cast<char>(fourth)));
}

TEST(ParseMp3FrameAt, agrees_with_the_plain_rule_on_all_headers) {
    for (int second = 0; second < 256; ++second) {
        for (int third = 0; third < 256; ++third) {
            const std::string bytes = header(second, third);
            const auto plain = LiteralFrameWalk::parse(bytes, 0);
            const auto frame = parsed(bytes);
            ASSERT_EQ(frame.has_value(), plain.has_value()) << second << " " << third;
            if (!frame) continue;
            ASSERT_EQ(frame->frameSize, plain->size) << second << " " << third;
            ASSERT_EQ(frame->durationSec, plain->duration) << second << " " << third;
        }
    }
}

TEST(Mp3DataStartOffset, is_behind_an_id3v2_tag) {
    EXPECT_EQ(mp3DataStartOffset(SyntheticMp3().id3v2(4096).frames(1).span()), 4106);
    EXPECT_EQ(mp3DataStartOffset(SyntheticMp3().frames(1).span()), 0);
    EXPECT_EQ(mp3DataStartOffset(spanOf("ID3\4\0\0\0\0\1")), 0);
    // Only seven bits of each byte count.
    EXPECT_EQ(mp3DataStartOffset(spanOf(std::string("ID3\4\0\0\xff\xff\xff\xff", 10))),
              10 + (1 << 28) - 1);
}

TEST(MergedSpans, are_in_order_and_apart_and_on_the_files_own_time) {
    const auto spans =
        mergedSpans(std::vector{selection(500, 400), selection(100, 200), selection(150, 300),
                                selection(300, 310), selection(320, 320), selection(100, 200)},
                    DaySeconds{90});
    EXPECT_THAT(spans, ElementsAre(FileSpan{{10}, {220}}, FileSpan{{310}, {410}}));
}

TEST(MergedSpans, leave_out_what_has_no_length) {
    EXPECT_THAT(mergedSpans(std::vector{selection(5, 5)}, DaySeconds{0}), IsEmpty());
    EXPECT_THAT(mergedSpans({}, DaySeconds{0}), IsEmpty());
    EXPECT_THAT(mergedSpans(std::vector{selection(5, std::nan(""))}, DaySeconds{0}), IsEmpty());
}

TEST(Mp3FrameWalk,
     leaves_out_a_frame_that_ends_where_the_range_begins_and_one_that_begins_where_it_ends) {
    const SyntheticMp3 file = SyntheticMp3().frames(6);
    const double low = timeOf(2, 576.0 / 16000);
    const double high = timeOf(4, 576.0 / 16000);
    EXPECT_EQ(cut(file.bytes(), {selection(low, high)}), file.bytes().substr(216, 216));
}

TEST(Mp3FrameWalk, widens_a_range_to_whole_frames) {
    const SyntheticMp3 file = SyntheticMp3().frames(6);
    EXPECT_EQ(cut(file.bytes(), {selection(0.05, 0.06)}), file.bytes().substr(108, 108));
    EXPECT_EQ(cut(file.bytes(), {selection(0.07, 0.073)}), file.bytes().substr(108, 216));
}

TEST(Mp3FrameWalk, finds_nothing_before_the_first_frame_or_behind_the_last) {
    const std::string file = SyntheticMp3().frames(6).bytes();
    EXPECT_EQ(cut(file, {selection(-20, -10)}), "");
    EXPECT_EQ(cut(file, {selection(-20, 0)}), "");
    EXPECT_EQ(cut(file, {selection(10, 20)}), "");
}

TEST(Mp3FrameWalk, ends_a_range_that_reaches_beyond_the_file_with_the_file) {
    const std::string file = SyntheticMp3().frames(6).bytes();
    EXPECT_EQ(cut(file, {selection(0.1, 90000)}), file.substr(216));
    EXPECT_EQ(cut(file, {selection(-5, std::numeric_limits<double>::infinity())}), file);
}

TEST(Mp3FrameWalk, gives_each_frame_once_when_selections_overlap) {
    const std::string file = SyntheticMp3().frames(100).bytes();
    const std::string once = cut(file, {selection(1, 2)});
    EXPECT_EQ(cut(file, {selection(1, 2), selection(1, 2)}), once);
    EXPECT_EQ(cut(file, {selection(1.5, 2), selection(1, 1.7)}), once);
    EXPECT_EQ(cut(file, {selection(1.5, 2), selection(1, 1.5)}), once);
}

TEST(Mp3FrameWalk, gives_a_frame_for_each_of_the_ranges_that_it_sounds_in) {
    const std::string file = SyntheticMp3().frames(3).bytes();
    const std::string twice = file.substr(108, 108) + file.substr(108, 108);
    EXPECT_EQ(cut(file, {selection(0.040, 0.045), selection(0.050, 0.055)}), twice);
}

TEST(Mp3FrameWalk, keeps_tags_out_of_the_cut) {
    const SyntheticMp3 file = SyntheticMp3().id3v2(4096).frames(5).id3v1();
    EXPECT_EQ(cut(file.bytes(), {selection(-1, 99)}), file.bytes().substr(4106, 540));
    EXPECT_EQ(cut(file.bytes(), {selection(0, 0.01)}), file.bytes().substr(4106, 108));
}

TEST(Mp3FrameWalk, steps_over_junk_without_counting_it_as_time) {
    const SyntheticMp3 file = SyntheticMp3().junk(1000).frames(2).junk(77).frames(2);
    const std::string& bytes = file.bytes();
    EXPECT_EQ(cut(bytes, {selection(0, 0.036)}), bytes.substr(1000, 108));
    EXPECT_EQ(cut(bytes, {selection(0.08, 0.1)}), bytes.substr(1000 + 216 + 77, 108));
    // What lies between two frames of the cut stays there.
    EXPECT_EQ(cut(bytes, {selection(0, 1)}), bytes.substr(1000));
}

TEST(Mp3FrameWalk, steps_byte_by_byte_over_headers_that_are_no_frames) {
    const SyntheticMp3 file = SyntheticMp3()
                                  .raw(header(0xFB, 0x00))  // free format
                                  .raw(header(0xFD, 0x90))  // Layer II
                                  .raw(header(0xEB, 0x90))  // reserved version
                                  .raw(std::string(9, '\xff'))
                                  .frames(3);
    EXPECT_EQ(cut(file.bytes(), {selection(0, 0.036)}), file.bytes().substr(21, 108));
}

TEST(Mp3FrameWalk, keeps_the_torn_frame_at_the_end) {
    const SyntheticMp3 file = SyntheticMp3().frames(3).tornFrame(50);
    EXPECT_EQ(cut(file.bytes(), {selection(0.05, 9)}), file.bytes().substr(108));
    EXPECT_EQ(cut(file.bytes(), {selection(0.11, 9)}), file.bytes().substr(324));
    // Three bytes are no header, but they belong to a cut that is open at the end.
    const SyntheticMp3 three = SyntheticMp3().frames(3).tornFrame(3);
    EXPECT_EQ(cut(three.bytes(), {selection(0.05, 9)}), three.bytes().substr(108));
    EXPECT_EQ(cut(three.bytes(), {selection(0.11, 9)}), "");
}

TEST(Mp3FrameWalk, counts_the_time_that_each_frames_own_header_gives) {
    const SyntheticMp3 file = SyntheticMp3()
                                  .frames(10, {.sampleRate = 44100, .bitrateKbps = 128})
                                  .frames(10, {.sampleRate = 8000, .bitrateKbps = 8});
    const double seam = timeOf(10, 1152.0 / 44100);
    const std::string got = cut(file.bytes(), {selection(seam + 0.001, seam + 0.072)});
    const auto& frame = file.made()[10];
    EXPECT_EQ(got, file.bytes().substr(static_cast<std::size_t>(frame.begin),
                                       static_cast<std::size_t>(frame.bytes)));
}

TEST(Mp3FrameWalk, finds_nothing_in_files_without_frames) {
    for (const std::string& file :
         {std::string(), std::string("Hello, this is a text and no sound.\n"),
          std::string(100'000, '\xff'), std::string(100'000, '\0'), std::string("\xff"),
          std::string("\xff\xfb\x90"), SyntheticMp3().id3v2(100'000).bytes().substr(0, 5000),
          SyntheticMp3().id3v1().bytes()}) {
        EXPECT_EQ(cut(file, {selection(-1, 1e9)}), "") << file.size() << " bytes";
    }
}

TEST(Mp3FrameWalk, finds_nothing_behind_a_tag_that_is_longer_than_the_file) {
    std::string file = SyntheticMp3().id3v2(4000).frames(10).bytes();
    file[6] = '\x7f';
    EXPECT_EQ(cut(file, {selection(0, 1e9)}), "");
}

constexpr std::uint32_t kStreams = 200;

enum class Purity { framesOnly, anything };

/// The running sum up to where frame `number` begins.
double beginOf(const SyntheticMp3& file, int number) {
    double time = 0;
    for (const auto& frame : std::span(file.made()).first(static_cast<std::size_t>(number)))
        time += static_cast<double>(frame.samples) / frame.sampleRate;
    return time;
}

/// Streams of many kinds, another for each seed.
class AnyStream {
  public:
    explicit AnyStream(std::uint32_t seed) : random_(seed) {}

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    Mp3Shape shape() {
        constexpr int kRates[] = {44100, 48000, 32000, 22050, 24000, 16000, 11025, 12000, 8000};
        constexpr int kMpeg1[] = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
        constexpr int kMpeg2[] = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
        const int rate = kRates[below(9)];
        return {.sampleRate = rate,
                .bitrateKbps = rate >= 32000 ? kMpeg1[below(14)] : kMpeg2[below(14)],
                .padding = static_cast<Mp3Shape::Padding>(below(3)),
                .stereo = below(2) == 1};
    }

    /// Noise with bytes 0xFF in it, so that some of it looks like headers.
    std::string wildJunk() {
        std::string bytes(static_cast<std::size_t>(below(3000)), '\0');
        for (char& each : bytes) each = static_cast<char>(below(4) == 0 ? 0xFF : below(256));
        return bytes;
    }

    SyntheticMp3 file(Purity purity) {
        const bool clean = purity == Purity::framesOnly;
        SyntheticMp3 made;
        if (below(2)) made.id3v2(below(5000));
        for (int parts = 1 + below(8); parts > 0; --parts) {
            const int kind = below(clean ? 3 : 8);
            if (kind <= 2) made.frames(1 + below(200), shape());
            if (kind == 3) made.junk(below(2000), static_cast<std::uint32_t>(random_()));
            if (kind == 4) made.raw(wildJunk());
            if (kind == 5) made.tornFrame(1 + below(20), shape());
            if (kind == 6) made.raw(std::string(static_cast<std::size_t>(below(2000)), '\xff'));
            if (kind == 7) made.raw(std::string(static_cast<std::size_t>(below(2000)), '\0'));
        }
        if (!clean && below(3) == 0) made.cutEnd(below(8));
        if (below(2)) made.id3v1();
        return made;
    }

    double time(double length) {
        return (static_cast<double>(random_()) / 4294967296.0 * 1.4 - 0.2) * length;
    }

    std::vector<Selection> selections(double length) {
        std::vector<Selection> made;
        for (int count = 1 + below(6); count > 0; --count) {
            const double start = time(length);
            // Some that are shorter than a frame, and close together.
            made.push_back(selection(start, below(3) ? time(length) : start + below(20) / 1000.0));
        }
        return made;
    }

  private:
    std::mt19937 random_;
};

TEST(AnyStreamIsCut, as_the_plain_rule_says) {
    for (std::uint32_t seed = 1; seed <= kStreams; ++seed) {
        AnyStream any(seed);
        const SyntheticMp3 file = any.file(Purity::anything);
        for (int i = 0; i < 10; ++i) {
            const auto selections = any.selections(file.durationSec() + 0.1);
            ASSERT_EQ(cut(file.bytes(), selections), literalCut(file.bytes(), selections)) << seed;
        }
    }
}

TEST(AnyStreamIsCut, the_same_however_it_is_read) {
    for (std::uint32_t seed = 1; seed <= kStreams; ++seed) {
        AnyStream any(seed);
        const SyntheticMp3 file = any.file(Purity::anything);
        const auto selections = any.selections(file.durationSec() + 0.1);
        const std::string atOnce = cut(file.bytes(), selections);
        for (const std::int64_t step : {1, 3, 108, 1000})
            ASSERT_EQ(cut(file.bytes(), selections, step), atOnce) << seed << " by " << step;
    }
}

TEST(AnyStreamIsCut, into_whole_frames_in_order_that_sound_in_the_range) {
    for (std::uint32_t seed = 1; seed <= kStreams; ++seed) {
        AnyStream any(seed);
        const SyntheticMp3 file = any.file(Purity::framesOnly);
        const auto wanted = selection(any.time(file.durationSec()), any.time(file.durationSec()));
        std::string expected;
        double time = 0;
        for (const auto& frame : file.made()) {
            const double end = time + static_cast<double>(frame.samples) / frame.sampleRate;
            if (end > wanted.lowSec() && time < wanted.highSec())
                expected += file.bytes().substr(static_cast<std::size_t>(frame.begin),
                                                static_cast<std::size_t>(frame.bytes));
            time = end;
        }
        ASSERT_EQ(cut(file.bytes(), {wanted}), expected) << seed;
    }
}

TEST(AnyStreamIsCut, into_adjacent_pieces_that_joined_are_the_cut_of_the_joined_range) {
    for (std::uint32_t seed = 1; seed <= kStreams; ++seed) {
        AnyStream any(seed);
        const SyntheticMp3 file = any.file(Purity::framesOnly);
        // A time at which a frame begins, as the walk itself adds it up.
        const double seam = beginOf(file, any.below(static_cast<int>(file.made().size())));
        const double low = seam - any.below(10);
        const double high = seam + any.below(10);
        ASSERT_EQ(
            cut(file.bytes(), {selection(low, seam)}) + cut(file.bytes(), {selection(seam, high)}),
            cut(file.bytes(), {selection(low, high)}))
            << seed;
    }
}

}  // namespace
}  // namespace sonavault::testing
