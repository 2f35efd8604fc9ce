#include "store/RecordingManifest.h"

#include <gtest/gtest.h>

#include "platform/LocalTime.h"
#include "support/RecordedLog.h"
#include "support/TempFolder.h"

namespace sonavault {
namespace {

using testing::RecordedLog;
using testing::TempFolder;
using testing::writeFile;

RecordingManifest fullManifest() {
    return {.version = 1,
            .startOffsetSec = 50709.123,
            .sourceMode = "line_input",
            .startedAtIso8601 = "2026-03-01T14:05:09.123Z",
            .sampleRate = 22050,
            .channels = 1,
            .bitrateKbps = 24,
            .deviceName = "Línea \"1\"",
            .recordedBy = "Sonavault 0.1.128",
            .notes = "MP3 (libmp3lame), CBR 24 kbps"};
}

TEST(RecordingManifest, is_written_indented_with_its_keys_in_order) {
    EXPECT_EQ(encodeManifest(fullManifest()), R"({
    "bitrate_kbps": 24,
    "channels": 1,
    "device_name": "Línea \"1\"",
    "notes": "MP3 (libmp3lame), CBR 24 kbps",
    "recorded_by": "Sonavault 0.1.128",
    "sample_rate": 22050,
    "source_mode": "line_input",
    "start_offset_sec": 50709.123,
    "started_at_iso8601": "2026-03-01T14:05:09.123Z",
    "version": 1
}
)");
}

TEST(RecordingManifest, leaves_out_what_is_absent) {
    EXPECT_EQ(encodeManifest({.version = 1, .startOffsetSec = 0}), R"({
    "start_offset_sec": 0,
    "version": 1
}
)");
}

TEST(RecordingManifest, reads_back_what_was_written) {
    const auto decoded = decodeManifest(encodeManifest(fullManifest()));
    ASSERT_TRUE(decoded) << decoded.error();
    EXPECT_EQ(decoded.value(), fullManifest());
}

TEST(RecordingManifest, needs_only_version_and_start_offset) {
    const auto decoded = decodeManifest(R"({"version": 7, "start_offset_sec": 12.5})");
    ASSERT_TRUE(decoded) << decoded.error();
    EXPECT_EQ(decoded.value(), (RecordingManifest{.version = 7, .startOffsetSec = 12.5}));
}

TEST(RecordingManifest, takes_an_offset_of_zero_for_a_recording_that_began_at_midnight) {
    const auto decoded = decodeManifest(R"({"version": 1, "start_offset_sec": 0})");
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded.value().startOffsetSec, 0);
}

TEST(RecordingManifest, passes_over_unknown_keys_and_takes_null_as_absent) {
    const auto decoded = decodeManifest(
        R"({"version": 1, "start_offset_sec": 1, "colour": {"a": []}, "notes": null, "sample_rate": null})");
    ASSERT_TRUE(decoded) << decoded.error();
    EXPECT_FALSE(decoded.value().notes);
    EXPECT_FALSE(decoded.value().sampleRate);
}

TEST(RecordingManifest, is_refused_without_a_required_key_or_with_one_wrong_type) {
    for (const auto* json : {
             R"({"start_offset_sec": 1})",
             R"({"version": 1})",
             R"({"version": null, "start_offset_sec": 1})",
             R"({"version": "1", "start_offset_sec": 1})",
             R"({"version": 1.5, "start_offset_sec": 1})",
             R"({"version": 1, "start_offset_sec": "1"})",
             R"({"version": 1, "start_offset_sec": true})",
             R"({"version": 1, "start_offset_sec": 1, "source_mode": 3})",
             R"({"version": 1, "start_offset_sec": 1, "started_at_iso8601": 3})",
             R"({"version": 1, "start_offset_sec": 1, "sample_rate": "22050"})",
             R"({"version": 1, "start_offset_sec": 1, "sample_rate": 22050.5})",
             R"({"version": 1, "start_offset_sec": 1, "channels": []})",
             R"({"version": 1, "start_offset_sec": 1, "bitrate_kbps": 1e300})",
             R"({"version": 1, "start_offset_sec": 1, "device_name": {}})",
             R"({"version": 1, "start_offset_sec": 1, "recorded_by": false})",
             R"({"version": 1, "start_offset_sec": 1, "notes": 0})",
             R"([1])",
             R"("text")",
             R"({"version": 1, "start_offset_sec": 1)",
             "",
         })
        EXPECT_FALSE(decodeManifest(json)) << json;
}

TEST(RecordingManifest, cut_at_any_byte_is_refused) {
    const auto whole = encodeManifest(fullManifest());
    const auto lastBrace = whole.rfind('}');
    for (std::size_t cut = 0; cut <= lastBrace; ++cut)
        EXPECT_FALSE(decodeManifest(whole.substr(0, cut))) << cut;
}

TEST(RecordingManifest, damaged_at_any_byte_is_refused_or_read_and_never_a_crash) {
    const auto whole = encodeManifest(fullManifest());
    int refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char byte : {'\0', '\xff', '}', '"', '9'}) {
            auto damaged = whole;
            damaged[at] = byte;
            refused += !decodeManifest(damaged);
        }
    }
    EXPECT_GT(refused, 0);
}

TEST(RecordingManifest, lies_beside_the_audio) {
    EXPECT_EQ(manifestURL("/a/Sonavault_2026-05-08.mp3"),
              std::filesystem::path("/a/Sonavault_2026-05-08.json"));
}

class ManifestOnDisk : public ::testing::Test {
  protected:
    void put(const std::string& json) { writeFile(json_, json); }

    TempFolder folder_;
    RecordedLog log_;
    const std::filesystem::path audio_ = folder_ / "Sonavault_2026-03-01.mp3";
    const std::filesystem::path json_ = folder_ / "Sonavault_2026-03-01.json";
};

TEST_F(ManifestOnDisk, that_is_not_there_is_nothing_without_a_word) {
    EXPECT_FALSE(loadManifest(audio_, log_));
    EXPECT_FALSE(readManifest(json_));
    EXPECT_FALSE(readManifestStartedAt(json_));
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(ManifestOnDisk, that_is_empty_or_malformed_is_told_by_the_reviews_reader_only) {
    for (const auto* json : {"", "{", "[]"}) {
        put(json);
        log_.clear();
        EXPECT_FALSE(readManifest(json_));
        EXPECT_TRUE(log_.lines().empty());
        EXPECT_FALSE(loadManifest(audio_, log_));
        ASSERT_EQ(log_.lines().size(), 1U) << json;
        EXPECT_TRUE(log_.lines()[0].starts_with("Sonavault: Manifest load failed at " +
                                                json_.string() + ": "));
    }
}

TEST_F(ManifestOnDisk, that_is_a_folder_is_refused) {
    std::filesystem::create_directory(json_);
    EXPECT_FALSE(readManifest(json_));
    EXPECT_FALSE(loadManifest(audio_, log_));
}

TEST_F(ManifestOnDisk, gives_the_moment_of_frame_0) {
    put(encodeManifest(fullManifest()));
    const auto startedAt = readManifestStartedAt(json_);
    ASSERT_TRUE(startedAt);
    EXPECT_EQ(iso8601WithMilliseconds(*startedAt), "2026-03-01T14:05:09.123Z");
    EXPECT_EQ(loadManifest(audio_, log_), fullManifest());
}

TEST_F(ManifestOnDisk, without_milliseconds_loads_but_gives_no_moment) {
    put(R"({"version": 1, "start_offset_sec": 3, "started_at_iso8601": "2026-03-01T14:05:09Z"})");
    EXPECT_TRUE(readManifest(json_));
    EXPECT_FALSE(readManifestStartedAt(json_));
}

}  // namespace
}  // namespace sonavault
