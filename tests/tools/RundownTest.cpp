#include "automation/Rundown.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "automation/Programme.h"
#include "platform/LocalTime.h"
#include "support/ScopedTimeZone.h"

namespace sonavault::automation {
namespace {

using namespace std::chrono_literals;
using sonavault::testing::ScopedTimeZone;

const WallTime kNoon = WallTime(std::chrono::hours(20'000 * 24 + 12));

std::vector<std::string> typesOf(const std::vector<Cue>& cues) {
    std::vector<std::string> types;
    types.reserve(cues.size());
    for (const Cue& cue : cues) types.push_back(cue.marker.type);
    return types;
}

TEST(Rundown, fills_every_hour_without_a_gap) {
    for (long long hour = 480'000; hour < 480'100; ++hour) {
        int at = 0;
        for (const RundownItem& item : makeHour(hour, 7)) {
            EXPECT_EQ(item.start, at);
            EXPECT_GE(item.length, 8);
            EXPECT_FALSE(item.label.empty());
            at = item.end();
        }
        EXPECT_EQ(at, 3600);
        // The cues of an hour all lie in it only if its last item needs no closing marker.
        EXPECT_EQ(makeHour(hour, 7).back().kind, ItemKind::song);
    }
}

TEST(Rundown, has_every_kind_of_marker_in_an_hour_and_pairs_in_their_order) {
    Rundown rundown(1);
    const auto cues = rundown.cues(kNoon, kNoon + 1h);
    const auto types = typesOf(cues);
    EXPECT_EQ(std::set<std::string>(types.begin(), types.end()),
              (std::set<std::string>{"hour", "mic_start", "mic_end", "break_start", "break_end",
                                     "vt_pre", "vt_post", "eas", "note"}));
    const std::map<std::string, std::string> closings{
        {"mic_start", "mic_end"}, {"break_start", "break_end"}, {"vt_pre", "vt_post"}};
    for (std::size_t i = 0; i < cues.size(); ++i) {
        EXPECT_GE(cues[i].at, cues[i == 0 ? 0 : i - 1].at);
        const auto closing = closings.find(types[i]);
        if (closing == closings.end()) continue;
        ASSERT_LT(i + 1, cues.size());
        EXPECT_EQ(types[i + 1], closing->second);
        EXPECT_EQ(cues[i + 1].marker.label, cues[i].marker.label);
        EXPECT_EQ(secondsBetween(cues[i].at, cues[i + 1].at), *cues[i].marker.durationSec);
    }
}

TEST(Rundown, has_an_hour_at_the_top_of_each_local_hour) {
    const ScopedTimeZone zone("Asia/Kolkata");
    Rundown rundown(1);
    const auto cues = rundown.cues(kNoon, kNoon + 2h);
    std::vector<std::string> hours;
    for (const Cue& cue : cues)
        if (cue.marker.type == "hour") {
            EXPECT_EQ(std::fmod(clockSecondsSinceMidnight(cue.at), 3600), 0);
            hours.push_back(cue.marker.label);
        }
    EXPECT_EQ(hours, (std::vector<std::string>{"Hour 18", "Hour 19"}));
}

TEST(Rundown, gives_each_cue_once_however_often_it_is_asked) {
    Rundown rundown(3);
    const auto whole = rundown.cues(kNoon - 10min, kNoon + 10min);
    std::vector<Cue> pieces;
    for (auto at = kNoon - 10min; at < kNoon + 10min; at += 250ms)
        for (const Cue& cue : rundown.cues(at, at + 250ms)) pieces.push_back(cue);
    ASSERT_EQ(pieces.size(), whole.size());
    for (std::size_t i = 0; i < whole.size(); ++i) {
        EXPECT_EQ(pieces[i].at, whole[i].at);
        EXPECT_EQ(pieces[i].marker, whole[i].marker);
    }
}

TEST(Rundown, is_another_in_another_hour_and_with_another_seed) {
    const auto labels = [](long long hour, unsigned seed) {
        std::vector<std::string> all;
        for (const auto& item : makeHour(hour, seed)) all.push_back(item.label);
        return all;
    };
    EXPECT_EQ(labels(480'000, 1), labels(480'000, 1));
    EXPECT_NE(labels(480'000, 1), labels(480'001, 1));
    EXPECT_NE(labels(480'000, 1), labels(480'000, 2));
}

/// Whether a stretch of the programme falls silent between phrases, as talk does and music never.
bool pauses(const std::vector<float>& samples, int sampleRate) {
    const auto twentieth = static_cast<std::size_t>(sampleRate / 20);
    for (std::size_t at = 0; at + twentieth <= samples.size(); at += twentieth) {
        float most = 0;
        for (std::size_t i = at; i < at + twentieth; ++i)
            most = std::max(most, std::abs(samples[i]));
        if (most < 1e-4F) return true;
    }
    return false;
}

TEST(Rundown, is_what_the_programme_sounds_like) {
    SignalSettings settings;
    settings.sampleRate = 8000;
    Rundown rundown(settings.seed);
    Programme programme(settings);
    WallTime at = kNoon;
    std::map<ItemKind, int> heard;
    while (at < kNoon + 10min) {
        const auto item = rundown.at(at);
        std::vector<float> samples(
            static_cast<std::size_t>(std::llround(secondsBetween(at, item.end) * 8000)));
        programme.fill(samples, at);
        const bool talks = item.kind == ItemKind::talk || item.kind == ItemKind::voicetrack;
        EXPECT_EQ(pauses(samples, 8000), talks)
            << "the item that ends " << secondsBetween(kNoon, item.end) << " s after noon";
        ++heard[item.kind];
        at = item.end;
    }
    EXPECT_EQ(heard.size(), 5U);
}

}  // namespace
}  // namespace sonavault::automation
