#include "platform/AppendWhole.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

class AppendWhole : public ::testing::Test {
  protected:
    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "log.csv";
};

TEST_F(AppendWhole, adds_at_the_end_and_keeps_what_is_there) {
    writeFile(file_, "one\n");
    ASSERT_TRUE(appendWholeLine(file_, "two\n"));
    ASSERT_TRUE(appendWholeLine(file_, "three\n"));
    EXPECT_EQ(readFile(file_), "one\ntwo\nthree\n");
}

TEST_F(AppendWhole, begins_a_new_line_behind_half_of_one) {
    writeFile(file_, "one\ntw");
    ASSERT_TRUE(appendWholeLine(file_, "three\n"));
    EXPECT_EQ(readFile(file_), "one\ntw\nthree\n");
}

TEST_F(AppendWhole, waits_for_nobody_at_a_pipe) {
    ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
    EXPECT_FALSE(appendWholeLine(file_, "one\n"));
}

TEST_F(AppendWhole, makes_no_file) {
    const auto appended = appendWholeLine(file_, "one\n");
    ASSERT_FALSE(appended);
    EXPECT_EQ(appended.error(), "No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(AppendWhole, says_why_nothing_can_be_added) {
    const auto appended = appendWholeLine(folder_.path(), "one\n");
    ASSERT_FALSE(appended);
    EXPECT_EQ(appended.error(), "Is a directory");
}

TEST_F(AppendWhole, adds_nothing_when_the_disk_has_room_for_a_part_only) {
    writeFile(file_, "one\n");
    {
        const FileSizeLimit disk(10);
        const auto appended = appendWholeLine(file_, "a row that is too long\n");
        ASSERT_FALSE(appended);
        EXPECT_EQ(appended.error(), "File too large");
        EXPECT_EQ(readFile(file_), "one\n");
        EXPECT_TRUE(appendWholeLine(file_, "two\n"));
    }
    ASSERT_TRUE(appendWholeLine(file_, "three\n"));
    EXPECT_EQ(readFile(file_), "one\ntwo\nthree\n");
}

}  // namespace
}  // namespace sonavault::testing
