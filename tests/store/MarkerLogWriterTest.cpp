#include "store/MarkerLogWriter.h"

#include <gtest/gtest.h>

#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"

namespace sonavault {
namespace {

using testing::readFile;
using testing::TempFolder;
using testing::writeFile;

TEST(CsvEscape, leaves_plain_text_as_it_stands) {
    EXPECT_EQ(csvEscape(""), "");
    EXPECT_EQ(csvEscape("News at 8; 'local'\t\r"), "News at 8; 'local'\t\r");
}

TEST(CsvEscape, quotes_commas_quotes_and_line_feeds) {
    EXPECT_EQ(csvEscape(","), "\",\"");
    EXPECT_EQ(csvEscape("say \"hi\""), "\"say \"\"hi\"\"\"");
    EXPECT_EQ(csvEscape("two\nlines"), "\"two\nlines\"");
    EXPECT_EQ(csvEscape("\""), "\"\"\"\"");
}

TEST(FormatDuration, gives_at_most_six_significant_digits) {
    EXPECT_EQ(formatDuration(0), "0");
    EXPECT_EQ(formatDuration(30), "30");
    EXPECT_EQ(formatDuration(45.5), "45.5");
    EXPECT_EQ(formatDuration(1234.5678), "1234.57");
    EXPECT_EQ(formatDuration(1e7), "1e+07");
    EXPECT_EQ(formatDuration(-2.25), "-2.25");
}

TEST(MarkerRow, escapes_the_label_alone) {
    EXPECT_EQ(markerRow("08:00:00", "hour", "", 0), "08:00:00,hour,,0\n");
    EXPECT_EQ(markerRow("08:00,x", "a\"b", "c,d", 1.5), "08:00,x,a\"b,\"c,d\",1.5\n");
}

class MarkerLogOnDisk : public ::testing::Test {
  protected:
    TempFolder folder_;
    DiskFlusher flusher_;
    const std::filesystem::path log_ = folder_ / "Sonavault_2026-05-08.csv";
};

TEST_F(MarkerLogOnDisk, begins_with_its_header) {
    writeCSVHeaderIfNeeded(log_, flusher_);
    EXPECT_EQ(readFile(log_), "timestamp,event,label,duration\n");
}

TEST_F(MarkerLogOnDisk, keeps_what_it_holds_when_it_exists) {
    writeFile(log_, "anything");
    writeCSVHeaderIfNeeded(log_, flusher_);
    EXPECT_EQ(readFile(log_), "anything");
}

TEST_F(MarkerLogOnDisk, gets_its_header_when_a_power_cut_left_a_name_without_a_byte) {
    writeFile(log_, "");
    writeCSVHeaderIfNeeded(log_, flusher_);
    EXPECT_EQ(readFile(log_), kMarkerLogHeader);
}

TEST_F(MarkerLogOnDisk, does_not_take_the_place_of_a_link) {
    const auto elsewhere = folder_ / "elsewhere.csv";
    writeFile(elsewhere, "");
    std::filesystem::create_symlink(elsewhere, log_);
    writeCSVHeaderIfNeeded(log_, flusher_);
    EXPECT_TRUE(std::filesystem::is_symlink(log_));
}

TEST_F(MarkerLogOnDisk, grows_by_whole_rows) {
    writeCSVHeaderIfNeeded(log_, flusher_);
    ASSERT_TRUE(appendMarkerRow(log_, markerRow("08:00:00", "hour", "", 0), flusher_));
    ASSERT_TRUE(appendMarkerRow(log_, markerRow("08:01:00", "vt", "a,b", 2), flusher_));
    EXPECT_EQ(readFile(log_),
              "timestamp,event,label,duration\n08:00:00,hour,,0\n08:01:00,vt,\"a,b\",2\n");
}

TEST_F(MarkerLogOnDisk, gives_half_a_row_back_when_the_disk_is_full) {
    writeCSVHeaderIfNeeded(log_, flusher_);
    const auto row = markerRow("08:00:00", "hour", "eight o'clock", 0);
    {
        const testing::FileSizeLimit full(std::filesystem::file_size(log_) + 7);
        EXPECT_FALSE(appendMarkerRow(log_, row, flusher_));
        EXPECT_EQ(readFile(log_), kMarkerLogHeader);
    }
    EXPECT_TRUE(appendMarkerRow(log_, row, flusher_));
    EXPECT_EQ(readFile(log_), kMarkerLogHeader + row);
}

TEST_F(MarkerLogOnDisk, begins_a_new_line_behind_a_row_that_a_kill_cut_off) {
    writeFile(log_, std::string(kMarkerLogHeader) + "08:00:00,hour,eight o'cl");
    ASSERT_TRUE(appendMarkerRow(log_, markerRow("09:00:00", "hour", "", 0), flusher_));
    EXPECT_EQ(readFile(log_),
              std::string(kMarkerLogHeader) + "08:00:00,hour,eight o'cl\n09:00:00,hour,,0\n");
}

TEST_F(MarkerLogOnDisk, that_could_not_be_begun_fails_at_the_append) {
    const auto nowhere = folder_ / "missing" / "log.csv";
    writeCSVHeaderIfNeeded(nowhere, flusher_);
    const auto appended = appendMarkerRow(nowhere, "row\n", flusher_);
    ASSERT_FALSE(appended);
    EXPECT_FALSE(appended.error().empty());
    EXPECT_FALSE(std::filesystem::exists(nowhere));
}

}  // namespace
}  // namespace sonavault
