#include "export/FrameWalkExport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "export/LiteralFrameWalk.h"
#include "support/FileSizeLimit.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

using Kind = ExportError::Kind;

Selection selection(double start, double end) {
    return Selection{.startSec = start, .endSec = end};
}

class FrameWalkExportTest : public ::testing::Test {
  protected:
    void haveDay(std::string_view bytes, const std::string& name = "Sonavault_2026-05-08.mp3") {
        source_.loadedFileURL = folder_ / name;
        writeFile(*source_.loadedFileURL, bytes);
    }

    auto exported(const std::optional<std::vector<Selection>>& ranges) const {
        return performFrameWalkExport(source_, ranges, output_);
    }

    /// What kept the export from giving a file, and that it gave none.
    ExportError refusal(const std::optional<std::vector<Selection>>& ranges) const {
        const auto result = exported(ranges);
        EXPECT_FALSE(result);
        EXPECT_FALSE(std::filesystem::exists(output_));
        return result ? ExportError(Kind::noSource) : result.error();
    }

    void appendToDay(std::string_view bytes) const {
        std::ofstream(*source_.loadedFileURL, std::ios::binary | std::ios::app) << bytes;
    }

    TempFolder folder_;
    std::filesystem::path output_ = folder_ / "cut.mp3";
    ExportSource source_;
};

TEST_F(FrameWalkExportTest, writes_the_frames_of_the_ranges_in_order_of_time) {
    const std::string day = SyntheticMp3().frames(1000).bytes();
    haveDay(day);
    ASSERT_TRUE(exported(std::vector{selection(20, 21), selection(3, 4)}));
    EXPECT_EQ(readFile(output_), LiteralFrameWalk::cut(day, {{3, 4}, {20, 21}}));
}

TEST_F(FrameWalkExportTest, takes_the_reviewers_selections_when_no_ranges_are_given) {
    const std::string day = SyntheticMp3().frames(1000).bytes();
    haveDay(day);
    source_.selections = {selection(5, 6)};
    ASSERT_TRUE(exported(std::nullopt));
    EXPECT_EQ(readFile(output_), LiteralFrameWalk::cut(day, {{5, 6}}));
}

TEST_F(FrameWalkExportTest, shifts_the_day_to_the_file) {
    const std::string day = SyntheticMp3().frames(1000).bytes();
    haveDay(day);
    source_.currentRecordingOffset = {3600};
    ASSERT_TRUE(exported(std::vector{selection(3605, 3606)}));
    EXPECT_EQ(readFile(output_), LiteralFrameWalk::cut(day, {{5, 6}}));
}

TEST_F(FrameWalkExportTest, replaces_a_file_of_that_name) {
    haveDay(SyntheticMp3().frames(100).bytes());
    writeFile(output_, std::string(100'000, 'x'));
    ASSERT_TRUE(exported(std::vector{selection(0, 0.01)}));
    EXPECT_EQ(readFile(output_).size(), 108u);
}

TEST_F(FrameWalkExportTest, sees_of_a_growing_day_what_is_there) {
    SyntheticMp3 day;
    haveDay(day.frames(100).bytes());
    ASSERT_TRUE(exported(std::vector{selection(0, 90)}));
    EXPECT_EQ(readFile(output_), day.bytes());
    haveDay(day.frames(100).bytes());
    ASSERT_TRUE(exported(std::vector{selection(0, 90)}));
    EXPECT_EQ(readFile(output_), day.bytes());
}

TEST_F(FrameWalkExportTest, needs_a_day_under_review) {
    const auto error = refusal(std::vector{selection(1, 2)});
    EXPECT_EQ(error.kind(), Kind::noSource);
    EXPECT_EQ(error.errorDescription(), "No source recording loaded.");
}

TEST_F(FrameWalkExportTest, refuses_a_legacy_day_before_all_else) {
    source_.loadedFileURL = folder_ / "Sonavault_2026-05-08.M4A";
    const auto error = refusal(std::vector<Selection>{});
    EXPECT_EQ(error.kind(), Kind::unsupportedSourceFormat);
    EXPECT_EQ(error.errorDescription(),
              "Export only supports MP3 sources right now. The loaded recording is .m4a (legacy). "
              "Open or record an MP3 first.");
}

TEST_F(FrameWalkExportTest, takes_a_suffix_in_capitals) {
    haveDay(SyntheticMp3().frames(10).bytes(), "Sonavault_2026-05-08.MP3");
    EXPECT_TRUE(exported(std::vector{selection(0, 1)}));
}

TEST_F(FrameWalkExportTest, refuses_an_empty_list_and_one_of_empty_ranges) {
    haveDay(SyntheticMp3().frames(10).bytes());
    for (const auto& none : {std::vector<Selection>{}, {selection(5, 5)}}) {
        const auto error = refusal(none);
        EXPECT_EQ(error.kind(), Kind::noSelections);
        EXPECT_EQ(error.errorDescription(), "No selections to export.");
    }
}

TEST_F(FrameWalkExportTest, says_why_the_day_cannot_be_read) {
    source_.loadedFileURL = folder_ / "gone.mp3";
    const auto error = refusal(std::vector{selection(1, 2)});
    EXPECT_EQ(error.kind(), Kind::readFailed);
    EXPECT_EQ(error.errorDescription(), "Could not read source: No such file or directory");
}

TEST_F(FrameWalkExportTest, says_why_the_cut_cannot_be_written) {
    haveDay(SyntheticMp3().frames(10).bytes());
    output_ = folder_ / "none" / "cut.mp3";
    const auto error = refusal(std::vector{selection(0, 2)});
    EXPECT_EQ(error.kind(), Kind::writeFailed);
    EXPECT_EQ(error.errorDescription(), "Could not write output: No such file or directory");
}

TEST_F(FrameWalkExportTest, keeps_the_earlier_cut_when_the_disk_is_full) {
    haveDay(SyntheticMp3().frames(1000).bytes());
    writeFile(output_, "earlier");
    const auto result = [this] {
        const FileSizeLimit full(5000);
        return exported(std::vector{selection(0, 30)});
    }();
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().errorDescription(), "Could not write output: File too large");
    EXPECT_EQ(readFile(output_), "earlier");
    const std::filesystem::directory_iterator entries(folder_.path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 2);
}

TEST_F(FrameWalkExportTest, finds_no_frames_before_the_first_audio_or_in_what_is_no_sound) {
    haveDay(SyntheticMp3().frames(10).bytes());
    source_.currentRecordingOffset = {3600};
    const auto error = refusal(std::vector{selection(10, 20)});
    EXPECT_EQ(error.kind(), Kind::noValidFrames);
    EXPECT_EQ(error.errorDescription(), "Source file has no MP3 frames overlapping any selection.");

    for (const std::string& bytes :
         {std::string(), std::string("a text\n"), std::string(1'000'000, '\xff')}) {
        haveDay(bytes);
        EXPECT_EQ(refusal(std::vector{selection(0, 90000)}).kind(), Kind::noValidFrames);
    }
}

TEST_F(FrameWalkExportTest, steps_over_holes_of_gigabytes) {
    const SyntheticMp3 tail = SyntheticMp3().frames(10);
    haveDay(SyntheticMp3().frames(10).bytes());
    constexpr std::uintmax_t kSize = std::uintmax_t{5} << 30;
    std::filesystem::resize_file(*source_.loadedFileURL, kSize);
    appendToDay(tail.bytes());
    // The eleventh frame is the first behind the hole.
    ASSERT_TRUE(exported(std::vector{selection(0.365, 9)}));
    EXPECT_EQ(readFile(output_), tail.bytes());
}

TEST_F(FrameWalkExportTest, finds_nothing_in_a_file_that_is_one_hole) {
    haveDay("");
    std::filesystem::resize_file(*source_.loadedFileURL, std::uintmax_t{5} << 30);
    EXPECT_EQ(refusal(std::vector{selection(0, 90000)}).kind(), Kind::noValidFrames);
}

TEST_F(FrameWalkExportTest, gives_up_when_told_to_and_leaves_nothing) {
    haveDay(SyntheticMp3().frames(100).bytes());
    std::stop_source stop;
    stop.request_stop();
    const auto result =
        performFrameWalkExport(source_, std::vector{selection(0, 9)}, output_, stop.get_token());
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind(), Kind::writeFailed);
    EXPECT_FALSE(std::filesystem::exists(output_));
}

TEST_F(FrameWalkExportTest, tells_how_far_it_has_come) {
    haveDay(SyntheticMp3().frames(100'000).bytes());
    std::vector<double> shares;
    ASSERT_TRUE(performFrameWalkExport(source_, std::vector{selection(3590, 3601)}, output_, {},
                                       [&](double share) { shares.push_back(share); }));
    ASSERT_GE(shares.size(), 3U);
    EXPECT_GT(shares.front(), 0.1);
    EXPECT_LT(shares.front(), 0.9);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(shares.back(), 1);
}

TEST_F(FrameWalkExportTest, blames_the_day_when_that_is_cut_short_while_it_is_copied) {
    haveDay(SyntheticMp3().frames(1000).bytes());
    const auto result = performFrameWalkExport(
        source_, std::vector{selection(1, 30)}, output_, {},
        [this](double) { std::filesystem::resize_file(*source_.loadedFileURL, 5000); });
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().errorDescription(), "Could not read source: No data available");
    EXPECT_FALSE(std::filesystem::exists(output_));
}

TEST_F(FrameWalkExportTest, does_not_write_over_the_day_that_it_is_cut_from) {
    const std::string day = SyntheticMp3().frames(100).bytes();
    haveDay(day, "opened by hand.mp3");
    create_hard_link(*source_.loadedFileURL, folder_ / "linked.mp3");
    create_symlink(*source_.loadedFileURL, folder_ / "leading.mp3");
    for (const auto& output :
         {*source_.loadedFileURL, folder_ / "linked.mp3", folder_ / "leading.mp3"}) {
        output_ = output;
        const auto result = exported(std::vector{selection(1, 2)});
        ASSERT_FALSE(result) << output;
        EXPECT_EQ(result.error().errorDescription(),
                  "Could not write output: it is a day's recording");
        EXPECT_EQ(readFile(*source_.loadedFileURL), day);
    }
}

TEST_F(FrameWalkExportTest, does_not_write_what_would_pass_for_a_recording) {
    haveDay(SyntheticMp3().frames(100).bytes());
    writeFile(folder_ / "Audio/Sonavault_2026-05-09.mp3", "being recorded");
    source_.recordingsFolders = {folder_ / "Audio"};
    for (const auto& output :
         {folder_ / "Audio/Sonavault_2026-05-09.mp3", folder_ / "Audio/Sonavault_2026-05-10.mp3",
          folder_ / "Sonavault_2026-05-10.mp3"}) {
        output_ = output;
        const auto result = exported(std::vector{selection(1, 2)});
        ASSERT_FALSE(result) << output;
        EXPECT_EQ(result.error().kind(), Kind::writeFailed);
    }
    EXPECT_EQ(readFile(folder_ / "Audio/Sonavault_2026-05-09.mp3"), "being recorded");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "Audio/Sonavault_2026-05-10.mp3"));
    output_ = folder_ / "Audio/2026-05-09_selections.mp3";
    EXPECT_TRUE(exported(std::vector{selection(1, 2)}));
}

}  // namespace
}  // namespace sonavault::testing
