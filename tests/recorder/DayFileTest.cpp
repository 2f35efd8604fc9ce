// Opening, continuing and describing a day's file.

#include "platform/AudioFileInfo.h"
#include "recorder/RecorderFixture.h"
#include "recorder/WallClockSync.h"

namespace sonavault {
namespace {

using testing::at;
using testing::readFile;
using testing::writeFile;

class DayFile : public testing::RecorderFixture {
  protected:
    void record(double seconds) {
        ASSERT_TRUE(recorder_->toggleRecording());
        runFor(seconds);
        ASSERT_FALSE(recorder_->toggleRecording());
    }

    /// The process is gone at once: nothing is flushed that was not written.
    void crash() {
        const auto copy = readFile(dayFile("mp3"));
        makeRecorder();
        writeFile(dayFile("mp3"), copy);
        log_.clear();
        useLineInput();
    }
};

TEST_F(DayFile, of_a_new_day_takes_the_chosen_quality_and_begins_now) {
    chooseQuality(SVQualityLevel::crazyGood);
    useLineInput();
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(log_.has(
        "Sonavault recorder: quality from user preference (Crazy Good) — 22050 Hz, 96 kbps"));
    EXPECT_TRUE(log_.has("Sonavault recorder: wall-clock anchor set fresh (existing=0.000s)"));
    EXPECT_TRUE(log_.containing("appending").empty());
    EXPECT_EQ(framesWritten(), 0);
    EXPECT_EQ(readFile(dayFile("csv")), "timestamp,event,label,duration\n");
}

TEST_F(DayFile, has_a_manifest_of_its_beginning) {
    useLineInput();
    record(1);
    EXPECT_EQ(readFile(dayFile("json")), R"({
    "bitrate_kbps": 24,
    "channels": 1,
    "device_name": "Studio console",
    "notes": "MP3 (libmp3lame), CBR 24 kbps",
    "recorded_by": "Sonavault 0.1.128",
    "sample_rate": 22050,
    "source_mode": "line_input",
    "start_offset_sec": 50709.123,
    "started_at_iso8601": "2026-03-02T13:05:09.123Z",
    "version": 1
}
)");
}

TEST_F(DayFile, from_the_link_is_described_by_the_files_own_format) {
    useLink();
    handshake({48000, 2, true});
    recorder_->toggleRecording();
    const auto manifest = readManifest(dayFile("json"));
    ASSERT_TRUE(manifest);
    EXPECT_EQ(manifest->deviceName, "Cadenzo TCP @ 22050Hz/1ch");
    EXPECT_EQ(manifest->sourceMode, "cadenzo_tcp");
}

TEST_F(DayFile, without_a_device_has_an_empty_name_for_it) {
    input_.deviceName.clear();
    useLineInput();
    recorder_->toggleRecording();
    EXPECT_EQ(readManifest(dayFile("json"))->deviceName, "");
}

TEST_F(DayFile, keeps_its_quality_and_its_manifest_at_a_later_start) {
    chooseQuality(SVQualityLevel::reallyGood);
    useLineInput();
    record(2);
    const auto manifest = readFile(dayFile("json"));
    chooseQuality(SVQualityLevel::crummy);
    clock_.advance(600);
    log_.clear();
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(log_.has("Sonavault recorder: quality from manifest — 22050 Hz, 48 kbps"));
    EXPECT_TRUE(log_.has("Sonavault recorder: appending — existing file is 2s at start"));
    EXPECT_EQ(readFile(dayFile("json")), manifest);
    runFor(1);
    recorder_->toggleRecording();
    EXPECT_EQ(readAudioFileInfo(dayFile("mp3")).value().sampleRate, 22050);
}

TEST_F(DayFile, takes_the_chosen_quality_when_its_manifest_does_not_tell_the_bit_rate) {
    useLineInput();
    record(1);
    writeFile(dayFile("json"), R"({"version": 1, "start_offset_sec": 1, "sample_rate": 16000})");
    chooseQuality(SVQualityLevel::crazyGood);
    log_.clear();
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(log_.has(
        "Sonavault recorder: quality from user preference (Crazy Good) — 22050 Hz, 96 kbps"));
}

TEST_F(DayFile, with_the_least_of_a_manifest_takes_preference_and_a_fresh_anchor) {
    useLineInput();
    record(3);
    writeFile(dayFile("json"), R"({"version": 1, "start_offset_sec": 1})");
    clock_.advance(100);
    log_.clear();
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_EQ(log_.containing("quality from user preference").size(), 1U);
    ASSERT_EQ(log_.containing("wall-clock anchor set fresh (existing=3.").size(), 1U);
    runFor(1);
    EXPECT_TRUE(log_.containing("wall-clock pad").empty())
        << "an outage that cannot be known is not padded";
}

TEST_F(DayFile, with_an_empty_or_damaged_manifest_is_continued_as_without_one) {
    for (const auto* json : {"", "{\"version\": 1,"}) {
        useLineInput();
        record(2);
        writeFile(dayFile("json"), json);
        log_.clear();
        ASSERT_TRUE(recorder_->toggleRecording());
        EXPECT_EQ(log_.containing("quality from user preference").size(), 1U);
        EXPECT_EQ(log_.containing("wall-clock anchor set fresh").size(), 1U);
        EXPECT_EQ(readFile(dayFile("json")), json) << "a manifest that exists is never rewritten";
        recorder_->toggleRecording();
    }
}

TEST_F(DayFile, with_a_start_without_milliseconds_gets_a_fresh_anchor_but_keeps_its_quality) {
    useLineInput();
    record(1);
    writeFile(dayFile("json"),
              R"({"version": 1, "start_offset_sec": 1, "started_at_iso8601": "2026-03-02T13:05:09Z",
        "sample_rate": 22050, "bitrate_kbps": 8})");
    log_.clear();
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(log_.has("Sonavault recorder: quality from manifest — 22050 Hz, 8 kbps"));
    EXPECT_EQ(log_.containing("wall-clock anchor set fresh").size(), 1U);
}

TEST_F(DayFile, left_empty_by_an_aborted_start_is_padded_from_that_start_on) {
    input_.startError = "busy";
    useLineInput();
    EXPECT_FALSE(recorder_->toggleRecording());
    EXPECT_EQ(std::filesystem::file_size(dayFile("mp3")), 0U);
    ASSERT_TRUE(std::filesystem::exists(dayFile("json")));
    input_.startError.clear();
    chooseQuality(SVQualityLevel::crummy);
    clock_.advance(10);
    log_.clear();
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(
        log_.has("Sonavault recorder: quality from user preference (Crummy) — 22050 Hz, 8 kbps"));
    EXPECT_EQ(framesWritten(), 0);
    EXPECT_TRUE(
        log_.has("Sonavault recorder: wall-clock anchor pinned to manifest start (existing=0.000s, "
                 "wall-elapsed-since-start=10.000s, deficit-to-pad=10.000s)"));
    runFor(2);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 12 * 22050, kPadToleranceFrames);
}

TEST_F(DayFile, that_is_no_audio_counts_as_empty_and_is_added_to_all_the_same) {
    writeFile(dayFile("mp3"), "this is no audio at all");
    useLineInput();
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_EQ(framesWritten(), 0);
    runFor(1);
    recorder_->toggleRecording();
    EXPECT_TRUE(readFile(dayFile("mp3")).starts_with("this is no audio at all"));
    EXPECT_GT(existingFramesAt(dayFile("mp3"), 22050), 20000);
}

TEST_F(DayFile, that_cannot_be_opened_keeps_the_recorder_idle) {
    std::filesystem::create_directories(dayFile("mp3"));
    useLineInput();
    EXPECT_FALSE(recorder_->toggleRecording());
    EXPECT_TRUE(log_.has("Sonavault recorder: could not open MP3 file for write: Is a directory"));
    EXPECT_EQ(host_->status(), "Source: Line Input (engine on demand)");
}

TEST_F(DayFile, with_a_senseless_rate_in_its_manifest_is_refused_by_the_encoder) {
    for (const auto* rate : {"0", "-5", "9007199254740992", "1000000000"}) {
        writeFile(dayFile("mp3"), "xx");
        writeFile(
            dayFile("json"),
            std::string(
                R"({"version": 1, "start_offset_sec": 1, "bitrate_kbps": 24, "sample_rate": )") +
                rate + "}");
        useLineInput();
        EXPECT_FALSE(recorder_->toggleRecording()) << rate;
        EXPECT_EQ(log_.count("Sonavault recorder: LAMEEncoder init failed"), 1) << rate;
        EXPECT_EQ(recorder_->currentRecordingDurationSec(), 0);
        EXPECT_EQ(readFile(dayFile("mp3")), "xx");
        log_.clear();
    }
}

TEST_F(DayFile, with_a_senseless_rate_does_not_spoil_the_link_for_the_next_file) {
    useLink();
    handshake({44100, 2, true});
    writeFile(dayFile("mp3"), "xx");
    writeFile(dayFile("json"),
              R"({"version": 1, "start_offset_sec": 1, "bitrate_kbps": 24, "sample_rate": 5})");
    EXPECT_FALSE(recorder_->toggleRecording());
    std::filesystem::remove(dayFile("json"));
    EXPECT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(host_->alerts.empty());
    runFor(1);
    EXPECT_NEAR(recorder_->currentRecordingDurationSec(), 1.0, 0.06);
}

TEST_F(DayFile, at_another_rate_than_the_resamplers_has_the_resampler_rebuilt) {
    useLink();
    handshake({44100, 2, true});
    writeFile(dayFile("mp3"), "xx");
    writeFile(dayFile("json"),
              R"({"version": 1, "start_offset_sec": 1, "bitrate_kbps": 32, "sample_rate": 16000})");
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(
        log_.has("Sonavault recorder: rebuilding resampler (was 22050 Hz → 16000 Hz; true source "
                 "44100 Hz/2ch)"));
    runFor(2);
    EXPECT_NEAR(recorder_->currentRecordingDurationSec(), 2.0, 0.06);
}

TEST_F(DayFile, resumes_true_to_the_clock_after_a_stop) {
    useLineInput();
    record(10);
    clock_.advance(5);
    ASSERT_TRUE(recorder_->toggleRecording());
    runFor(10);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 25 * 22050, kPadToleranceFrames + 1);
}

TEST_F(DayFile, resumes_true_to_the_clock_after_a_crash) {
    useLineInput();
    recorder_->toggleRecording();
    runFor(10);
    crash();
    clock_.advance(5);
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_EQ(log_.containing("anchor pinned to manifest start").size(), 1U);
    runFor(10);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 25 * 22050, kPadToleranceFrames + 1);
    recorder_->toggleRecording();
    EXPECT_NEAR(readAudioFileInfo(dayFile("mp3")).value().durationSec(), 25, 0.15);
}

class EachQuality : public DayFile, public ::testing::WithParamInterface<SVQualityLevel::Case> {};

TEST_P(EachQuality, records_resumes_and_stays_true_to_the_clock) {
    const SVQualityLevel level(GetParam());
    chooseQuality(level);
    useLineInput();
    record(4);
    clock_.advance(3);
    record(4);
    clock_.advance(3);
    ASSERT_TRUE(recorder_->toggleRecording());
    runFor(6);
    EXPECT_NEAR(recorder_->currentRecordingDurationSec(), 20, 0.05 + 1e-3);
    recorder_->toggleRecording();
    const auto info = readAudioFileInfo(dayFile("mp3"));
    ASSERT_TRUE(info);
    EXPECT_NEAR(info.value().durationSec(), 20, 0.3)
        << "the last close adds the encoder's own padding";
    EXPECT_EQ(readManifest(dayFile("json"))->bitrateKbps, level.bitrateKbps());
}

INSTANTIATE_TEST_SUITE_P(Level, EachQuality, ::testing::ValuesIn(SVQualityLevel::allCases),
                         [](const auto& level) {
                             return std::to_string(SVQualityLevel(level.param).bitrateKbps()) +
                                    "kbps";
                         });

TEST_F(DayFile, goes_on_growing_its_peaks_on_the_files_grid) {
    useLineInput();
    record(1.3);
    host_->peaks.clear();
    ASSERT_TRUE(recorder_->toggleRecording());
    const FrameCount held = framesWritten();
    const FrameCount untilGrid = 5512 - held % 5512;
    clock_.set(after(at("2026-03-02T13:05:09.123Z"), static_cast<double>(held) / 22050));
    send(untilGrid - 1);
    EXPECT_TRUE(host_->peaks.empty());
    send(1);
    EXPECT_EQ(host_->peaks.size(), 1U);
}

TEST_F(DayFile, belongs_to_the_local_date) {
    clock_.set(at("2026-03-02T23:30:00.000Z"));
    useLineInput();
    recorder_->toggleRecording();
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3", "2026-03-03"));
    EXPECT_EQ(readManifest(dayFile("json", "2026-03-03"))->startOffsetSec, 1800);
}

TEST_F(DayFile, without_a_sidecar_folder_that_takes_it_records_all_the_same) {
    std::filesystem::create_directories(dayFile("csv"));
    useLineInput();
    EXPECT_TRUE(recorder_->toggleRecording());
}

}  // namespace
}  // namespace sonavault
