#include "automation/StationMarker.h"

#include <gtest/gtest.h>

#include "support/ScopedTimeZone.h"

namespace sonavault::automation {
namespace {

using sonavault::testing::ScopedTimeZone;

/// 2026-03-01T14:05:09.123Z
const WallTime kMoment = WallTime(std::chrono::milliseconds(1'772'373'909'123));

TEST(StationMarker, tells_the_event_in_local_time_and_the_emission_in_utc) {
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(markerPayload({"hour"}, kMoment, after(kMoment, 1)),
              R"({"clock_time":"15:05:09","type":"hour",)"
              R"("wall_clock_iso8601":"2026-03-01T14:05:10.123Z"})");
}

TEST(StationMarker, tells_all_it_has) {
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(markerPayload({"vt_pre", "Jonas, \"late\"\nü", 12.5, "23:59:59", "vt/7.wav", true},
                            kMoment, kMoment),
              R"({"clock_time":"23:59:59","duration_sec":12.5,"file":"vt/7.wav",)"
              R"("label":"Jonas, \"late\"\nü","test_mode":true,"type":"vt_pre",)"
              R"("wall_clock_iso8601":"2026-03-01T14:05:09.123Z"})");
}

TEST(StationMarker, is_framed_behind_its_length_in_either_byte_order) {
    const std::string payload(258, 'x');
    auto little = markerFrame(payload, false);
    auto big = markerFrame(payload, true);
    ASSERT_EQ(little.size(), 262U);
    little.resize(5);
    big.resize(5);
    EXPECT_EQ(little, (std::vector<std::uint8_t>{2, 1, 0, 0, 'x'}));
    EXPECT_EQ(big, (std::vector<std::uint8_t>{0, 0, 1, 2, 'x'}));
}

}  // namespace
}  // namespace sonavault::automation
