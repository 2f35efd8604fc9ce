#include "automation/Options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "support/Matches.h"
#include "support/TempFolder.h"

namespace sonavault::automation {
namespace {

using ::testing::UnorderedElementsAre;

Result<Options> parsed(const QStringList& arguments) {
    return parseOptions(QStringList{"sonavault-automation"} + arguments);
}

TEST(Options, are_a_stereo_programme_to_this_machine_without_any) {
    const auto options = parsed({});
    ASSERT_TRUE(options);
    EXPECT_EQ(options.value().host, "127.0.0.1");
    EXPECT_EQ(options.value().port, 9171);
    EXPECT_EQ(options.value().format.sampleRate, 44100);
    EXPECT_EQ(options.value().format.channels, 2);
    EXPECT_FALSE(options.value().format.bigEndian);
    EXPECT_EQ(options.value().signal.kind, SignalKind::programme);
    EXPECT_FALSE(options.value().durationSec);
    EXPECT_FALSE(options.value().once);
    EXPECT_EQ(options.value().markers.port, 9172);
    EXPECT_EQ(options.value().markers.source, MarkerSource::off);
    EXPECT_FALSE(options.value().markers.bigEndian);
}

TEST(Options, take_the_markers_of_the_programme_to_the_same_place) {
    const auto options = parsed({"--host", "studio", "--seed", "9", "--markers", "demo",
                                 "--marker-port", "99", "--marker-byte-order", "big"});
    ASSERT_TRUE(options) << options.error();
    const MarkerOptions& markers = options.value().markers;
    EXPECT_EQ(markers.source, MarkerSource::demo);
    EXPECT_EQ(markers.host, "studio");
    EXPECT_EQ(markers.port, 99);
    EXPECT_EQ(markers.seed, 9U);
    EXPECT_TRUE(markers.bigEndian);
}

TEST(Options, take_markers_from_a_file) {
    const sonavault::testing::TempFolder folder;
    const auto file = QString::fromStdString((folder / "plan").string());
    sonavault::testing::writeFile(folder / "plan", "1.5 marker hour\n");
    const auto options = parsed({"--markers", file});
    ASSERT_TRUE(options) << options.error();
    EXPECT_EQ(options.value().markers.source, MarkerSource::script);
    ASSERT_EQ(options.value().markers.script.size(), 1U);
    EXPECT_EQ(options.value().markers.script[0].second, 1.5);
    sonavault::testing::writeFile(folder / "plan", "soon marker hour\n");
    EXPECT_FALSE(parsed({"--markers", file}));
}

TEST(Options, take_every_setting) {
    const auto options =
        parsed({"--host",      "studio",     "--port",       "1234",      "--rate",   "192000",
                "--channels",  "8",          "--byte-order", "big",       "--signal", "tone-bursts",
                "--frequency", "440.5",      "--level",      "-12",       "--seed",   "9",
                "--duration",  "2.5",        "--once",       "--drop-at", "1:2",      "--drop-at",
                "10:1",        "--stall-at", "5:1",          "--chunk",   "5"});
    ASSERT_TRUE(options) << options.error();
    const Options& all = options.value();
    EXPECT_EQ(all.host, "studio");
    EXPECT_EQ(all.port, 1234);
    EXPECT_EQ(all.format.sampleRate, 192000);
    EXPECT_EQ(all.format.channels, 8);
    EXPECT_TRUE(all.format.bigEndian);
    EXPECT_EQ(all.signal.kind, SignalKind::toneBursts);
    EXPECT_EQ(all.signal.sampleRate, 192000);
    EXPECT_EQ(all.signal.frequency, 440.5);
    EXPECT_EQ(all.signal.level, -12);
    EXPECT_EQ(all.signal.seed, 9U);
    EXPECT_EQ(all.chunkSec, 0.005);
    EXPECT_EQ(all.durationSec, 2.5);
    EXPECT_TRUE(all.once);
    EXPECT_EQ(all.plan.at(1.5), AirState::dropped);
    EXPECT_EQ(all.plan.at(5.5), AirState::stalled);
    EXPECT_EQ(all.plan.at(10.5), AirState::dropped);
}

TEST(Options, refuse_what_the_link_does_not_carry) {
    for (const QStringList& wrong : {QStringList{"--rate", "7999"},
                                     {"--rate", "192001"},
                                     {"--channels", "0"},
                                     {"--chunk", "4"},
                                     {"--channels", "9"},
                                     {"--byte-order", "middle"},
                                     {"--signal", "song"},
                                     {"--level", "0"},
                                     {"--level", "nan"},
                                     {"--frequency", "30000"},
                                     {"--port", "70000"},
                                     {"--drop-at", "5"},
                                     {"--stall-at", "x:1"},
                                     {"--marker-port", "0"},
                                     {"--marker-byte-order", "middle"},
                                     {"--markers", "/nowhere/plan"},
                                     {"--duration", "-1"},
                                     {"--nonsense"},
                                     {"stray"}}) {
        const auto options = parsed(wrong);
        ASSERT_FALSE(options) << wrong.join(' ').toStdString();
        EXPECT_FALSE(options.error().empty());
    }
}

TEST(Options, know_when_help_is_wanted_and_name_every_option_in_it) {
    const auto options = parsed({"--help"});
    ASSERT_TRUE(options);
    EXPECT_TRUE(options.value().wantsHelp);
    const auto named = sonavault::testing::matchesIn(helpText(), "(--[a-z-]+)");
    EXPECT_THAT(std::set(named.begin(), named.end()),
                UnorderedElementsAre("--help", "--host", "--port", "--rate", "--channels",
                                     "--byte-order", "--chunk", "--once", "--signal", "--frequency",
                                     "--level", "--seed", "--duration", "--drop-at", "--stall-at",
                                     "--markers", "--marker-port", "--marker-byte-order"));
}

}  // namespace
}  // namespace sonavault::automation
