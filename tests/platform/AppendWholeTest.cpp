#include "platform/AppendWhole.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <string>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

/// A disk that is full once a file has so many bytes, for the length of a test.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) : before_(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &limit_);
        rlimit small = limit_;
        small.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &limit_);
        signal(SIGXFSZ, before_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    void (*before_)(int);
    rlimit limit_{};
};

class AppendWhole : public ::testing::Test {
  protected:
    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "log.csv";
};

TEST_F(AppendWhole, adds_at_the_end_and_keeps_what_is_there) {
    writeFile(file_, "one\n");
    ASSERT_TRUE(appendWhole(file_, "two\n"));
    ASSERT_TRUE(appendWhole(file_, ""));
    ASSERT_TRUE(appendWhole(file_, "three\n"));
    EXPECT_EQ(readFile(file_), "one\ntwo\nthree\n");
}

TEST_F(AppendWhole, makes_no_file) {
    const auto appended = appendWhole(file_, "one\n");
    ASSERT_FALSE(appended);
    EXPECT_EQ(appended.error(), "No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(AppendWhole, says_why_nothing_can_be_added) {
    const auto appended = appendWhole(folder_.path(), "one\n");
    ASSERT_FALSE(appended);
    EXPECT_EQ(appended.error(), "Is a directory");
}

TEST_F(AppendWhole, adds_nothing_when_the_disk_has_room_for_a_part_only) {
    writeFile(file_, "one\n");
    {
        const FullDisk disk(10);
        const auto appended = appendWhole(file_, "a row that is too long\n");
        ASSERT_FALSE(appended);
        EXPECT_EQ(appended.error(), "File too large");
        EXPECT_EQ(readFile(file_), "one\n");
        EXPECT_TRUE(appendWhole(file_, "two\n"));
    }
    ASSERT_TRUE(appendWhole(file_, "three\n"));
    EXPECT_EQ(readFile(file_), "one\ntwo\nthree\n");
}

}  // namespace
}  // namespace sonavault::testing
