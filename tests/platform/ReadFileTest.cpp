#include "platform/ReadFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

class ReadFile : public ::testing::Test {
  protected:
    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "file";
};

TEST_F(ReadFile, gives_all_bytes) {
    std::string bytes(200'000, 'a');
    bytes[100'000] = '\0';
    writeFile(file_, bytes);
    EXPECT_EQ(readWholeFile(file_).value(), bytes);
    writeFile(file_, "");
    EXPECT_EQ(readWholeFile(file_).value(), "");
}

TEST_F(ReadFile, says_why_it_gives_none) {
    EXPECT_EQ(readWholeFile(file_).error(), "No such file or directory");
    EXPECT_EQ(readWholeFile(folder_.path()).error(), "Is a directory");
}

TEST_F(ReadFile, waits_for_nobody_at_a_pipe) {
    ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
    EXPECT_EQ(readWholeFile(file_).error(), "Not a plain file");
}

TEST_F(ReadFile, refuses_what_is_too_large_before_it_reads_any_of_it) {
    writeFile(file_, "12345");
    EXPECT_TRUE(readWholeFile(file_, 5));
    EXPECT_EQ(readWholeFile(file_, 4).error(), "File too large");
    std::filesystem::resize_file(file_, std::uintmax_t{1} << 40);
    EXPECT_EQ(readWholeFile(file_).error(), "File too large");
}

}  // namespace
}  // namespace sonavault::testing
