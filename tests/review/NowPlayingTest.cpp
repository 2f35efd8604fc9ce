#include "review/NowPlaying.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "review/PlayheadDisplay.h"

namespace sonavault::testing {
namespace {

constexpr auto kMusic = "Now playing: music / programming";

/// The line's text with the playhead at a moment.
std::string textAt(const std::vector<Marker>& markers, double playhead) {
    return nowPlayingText(NowPlaying(markers).at({playhead}));
}

Marker at(double timeSec, const std::string& type, const std::string& label = {},
          double durationSec = 0) {
    return {.type = type, .timeSec = timeSec, .label = label, .durationSec = durationSec};
}

TEST(NowPlaying, without_markers_is_music) {
    EXPECT_EQ(textAt({}, 0), kMusic);
    EXPECT_EQ(nowPlayingText(NowPlaying().at({100})), kMusic);
}

TEST(NowPlaying, a_span_holds_both_its_ends) {
    const std::vector<Marker> markers{at(100, "break", "Ads", 30)};
    EXPECT_EQ(textAt(markers, 99.99), kMusic);
    EXPECT_EQ(textAt(markers, 100), "Now playing: Stopset — Ads");
    EXPECT_EQ(textAt(markers, 130), "Now playing: Stopset — Ads");
    EXPECT_EQ(textAt(markers, 130.01), kMusic);
}

TEST(NowPlaying, a_span_without_a_length_holds_its_second_alone) {
    const std::vector<Marker> markers{at(100, "vt", "Hello")};
    EXPECT_EQ(textAt(markers, 100), "Now playing: Voicetrack — Hello");
    EXPECT_EQ(textAt(markers, 100.01), kMusic);
}

TEST(NowPlaying, a_pair_holds_all_from_start_to_end_under_the_label_of_the_start) {
    const std::vector<Marker> markers{at(100, "vt_start", "First"), at(130, "vt_end", "Second")};
    for (const double playhead : {100.0, 115.0, 130.0})
        EXPECT_EQ(textAt(markers, playhead), "Now playing: Voicetrack — First");
    EXPECT_EQ(textAt(markers, 130.01), kMusic);
    EXPECT_EQ(textAt(markers, 99.99), kMusic);
}

TEST(NowPlaying, an_end_without_a_start_is_passed_over) {
    const std::vector<Marker> markers{at(50, "vt_end", "x"), at(100, "vt_start", "y"),
                                      at(130, "vt_end", "z"), at(150, "vt_end", "w")};
    EXPECT_EQ(textAt(markers, 60), kMusic);
    EXPECT_EQ(textAt(markers, 110), "Now playing: Voicetrack — y");
    EXPECT_EQ(textAt(markers, 140), kMusic);
}

TEST(NowPlaying, a_second_start_takes_the_place_of_the_first) {
    const std::vector<Marker> markers{at(100, "vt_start", "first"), at(110, "vt_start", "second"),
                                      at(130, "vt_end")};
    EXPECT_EQ(textAt(markers, 105), kMusic);
    EXPECT_EQ(textAt(markers, 110), "Now playing: Voicetrack — second");
    EXPECT_EQ(textAt(markers, 130), "Now playing: Voicetrack — second");
}

TEST(NowPlaying, a_start_without_an_end_opens_nothing) {
    EXPECT_EQ(textAt({at(100, "vt_start", "on the air now")}, 100), kMusic);
    EXPECT_EQ(textAt({at(100, "vt_start", "on the air now")}, 120), kMusic);
}

TEST(NowPlaying, pairs_by_time_and_not_by_place_in_the_list) {
    EXPECT_EQ(textAt({at(130, "mic_end"), at(100, "mic_start", "Guest")}, 120),
              "Now playing: Live mic — Guest");
}

TEST(NowPlaying, does_not_pair_a_mic_with_a_voicetrack) {
    EXPECT_EQ(textAt({at(100, "mic_start"), at(130, "vt_end")}, 110), kMusic);
}

TEST(NowPlaying, what_began_last_wins_and_gives_way_when_it_is_over) {
    const std::vector<Marker> markers{at(100, "mic_start", "Host"), at(200, "mic_end"),
                                      at(150, "break", "Ads", 30)};
    EXPECT_EQ(textAt(markers, 160), "Now playing: Stopset — Ads");
    EXPECT_EQ(textAt(markers, 190), "Now playing: Live mic — Host");
}

TEST(NowPlaying, an_empty_label_leaves_the_dash) {
    EXPECT_EQ(textAt({at(100, "mic", "", 5)}, 102), "Now playing: Live mic — ");
}

TEST(NowPlaying, other_types_tell_of_no_segment) {
    for (const auto* type : {"hour", "eas", "custom", "vt-pre", "silence_start"})
        EXPECT_EQ(textAt({at(100, type, "x", 50)}, 110), kMusic) << type;
}

TEST(NowPlaying, bears_times_and_lengths_that_no_clock_has) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    const std::vector<Marker> markers{at(kNone, "vt", "a", 5),        at(10, "vt", "b", kNone),
                                      at(10, "vt", "c", -5),          at(kNone, "vt_start", "d"),
                                      at(20, "break", "e", kEndless), at(kEndless, "vt_end", "f")};
    EXPECT_EQ(textAt(markers, 10), kMusic);
    EXPECT_EQ(textAt(markers, 80000), "Now playing: Stopset — e");
    EXPECT_EQ(textAt(markers, kNone), kMusic);
}

/// The segment that began last by walking over all of them.
const MarkedSegment* plainlyAt(const std::vector<MarkedSegment>& segments, double playhead) {
    const MarkedSegment* found = nullptr;
    for (const MarkedSegment& each : segments)
        if (each.startSec <= playhead && playhead <= each.endSec &&
            (!found || each.startSec >= found->startSec))
            found = &each;
    return found;
}

TEST(NowPlaying, finds_what_a_walk_over_all_segments_finds) {
    const std::vector<std::string> types{"vt",       "break",     "mic",     "vt_start", "vt_end",
                                         "vt_start", "mic_start", "mic_end", "hour"};
    std::mt19937 random(7);
    std::uniform_int_distribution<std::size_t> type(0, types.size() - 1);
    std::uniform_int_distribution<int> tenth(0, 20000);
    std::uniform_int_distribution<int> length(0, 100);
    for (int day = 0; day < 5; ++day) {
        std::vector<Marker> markers;
        for (int i = 0; i < 300; ++i)
            markers.push_back(at(tenth(random) / 10.0, types[type(random)], std::to_string(i),
                                 length(random) / 10.0));
        const auto segments = markedSegments(markers);
        const NowPlaying nowPlaying(markers);
        int found = 0;
        for (int playhead = 0; playhead <= 20100; ++playhead) {
            const auto* wanted = plainlyAt(segments, playhead / 10.0);
            const auto* got = nowPlaying.at({playhead / 10.0});
            ASSERT_EQ(nowPlayingText(got), nowPlayingText(wanted)) << playhead;
            found += wanted != nullptr;
        }
        EXPECT_GT(found, 1000);
    }
}

class Window final : public PlayheadDisplayHost {
  public:
    DaySeconds playheadSec() const override { return playhead; }
    std::optional<Size> timelineSize() const override { return timeline; }
    void setPlayheadFrame(const Box& to) override { frame = to; }
    void setTransportTime(const std::string& text) override { time = text; }
    void setNowPlaying(const std::string& text) override { nowPlaying = text; }

    DaySeconds playhead;
    std::optional<Size> timeline = Size{1000, 300};
    std::optional<Box> frame;
    std::string time;
    std::string nowPlaying;
};

TEST(PlayheadDisplay, shows_the_line_the_clock_and_what_was_on_the_air) {
    Window window;
    PlayheadDisplay display(window);
    display.setMarkers({at(43200, "mic", "Noon", 60)});
    window.playhead = {43210.9};
    display.updatePlayheadVisuals();
    ASSERT_TRUE(window.frame);
    EXPECT_DOUBLE_EQ(window.frame->x, 43210.9 / 86400 * 1000 - 1);
    EXPECT_EQ(window.frame->width, 2);
    EXPECT_EQ(window.frame->height, 300);
    EXPECT_EQ(window.time, "12:00:10");
    EXPECT_EQ(window.nowPlaying, "Now playing: Live mic — Noon");
}

TEST(PlayheadDisplay, shows_the_texts_also_without_a_timeline) {
    Window window;
    window.timeline.reset();
    PlayheadDisplay(window).updatePlayheadVisuals();
    EXPECT_FALSE(window.frame);
    EXPECT_EQ(window.time, "00:00:00");
    EXPECT_EQ(window.nowPlaying, kMusic);
}

TEST(PlayheadDisplay, follows_the_markers) {
    Window window;
    PlayheadDisplay display(window);
    display.setMarkers({at(0, "vt", "old", 10)});
    display.setMarkers({at(0, "vt", "new", 10)});
    display.updatePlayheadVisuals();
    EXPECT_EQ(window.nowPlaying, "Now playing: Voicetrack — new");
}

}  // namespace
}  // namespace sonavault::testing
