#include "platform/FileStamp.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

class FileStampTest : public ::testing::Test {
  protected:
    FileStampTest() { writeFile(file_, "12345"); }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "file";
};

TEST_F(FileStampTest, stays_the_same_while_nobody_changes_the_file) {
    const auto stamp = fileStamp(file_);
    ASSERT_TRUE(stamp);
    EXPECT_EQ(stamp->size, 5);
    EXPECT_EQ(readFile(file_), "12345");
    EXPECT_EQ(fileStamp(file_), stamp);
}

TEST_F(FileStampTest, changes_when_the_file_grows) {
    const auto stamp = fileStamp(file_);
    writeFile(file_, "123456");
    EXPECT_NE(fileStamp(file_), stamp);
}

TEST_F(FileStampTest, changes_with_the_time_of_change_to_the_nanosecond) {
    const auto time = std::filesystem::last_write_time(file_);
    const auto stamp = fileStamp(file_);
    std::filesystem::last_write_time(file_, time + 1ns);
    const auto later = fileStamp(file_);
    ASSERT_TRUE(stamp && later);
    EXPECT_EQ(later->modifiedNs - stamp->modifiedNs, 1);
}

TEST_F(FileStampTest, changes_when_another_file_of_the_same_size_and_time_takes_its_place) {
    const auto stamp = fileStamp(file_);
    const auto other = folder_ / "other";
    writeFile(other, "54321");
    std::filesystem::last_write_time(other, std::filesystem::last_write_time(file_));
    std::filesystem::rename(other, file_);
    EXPECT_NE(fileStamp(file_), stamp);
}

TEST_F(FileStampTest, follows_a_link_to_the_file) {
    std::filesystem::create_symlink(file_, folder_ / "link");
    EXPECT_EQ(fileStamp(folder_ / "link"), fileStamp(file_));
}

TEST_F(FileStampTest, is_nothing_for_what_is_missing_or_a_folder) {
    EXPECT_EQ(fileStamp(folder_ / "missing"), std::nullopt);
    EXPECT_EQ(fileStamp(folder_.path()), std::nullopt);
    EXPECT_EQ(fileStamp(file_ / "below"), std::nullopt);
}

}  // namespace
}  // namespace sonavault::testing
