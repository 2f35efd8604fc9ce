#include "platform/Descriptors.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

class Descriptors : public ::testing::Test {
  protected:
    Descriptor openToWrite() const {
        return Descriptor(::open(file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    }
    static bool isOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "file";
};

TEST_F(Descriptors, are_closed_once_and_only_by_who_holds_them) {
    writeFile(file_, "x");
    int number = -1;
    {
        auto opened = openForReading(file_);
        ASSERT_TRUE(opened);
        number = opened.value().number();
        Descriptor holder = std::move(opened.value());
        EXPECT_EQ(opened.value().number(), -1);
        EXPECT_EQ(holder.number(), number);
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
    number = openForReading(file_).value().release();
    EXPECT_TRUE(isOpen(number));
    const Descriptor again(number);
}

TEST_F(Descriptors, are_had_of_plain_files_alone) {
    EXPECT_EQ(openForReading(file_).error(), "No such file or directory");
    EXPECT_EQ(openForReading(folder_.path()).error(), "Is a directory");
    EXPECT_EQ(openForReading("/dev/null").error(), "Not a plain file");
    ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
    EXPECT_EQ(openForReading(file_).error(), "Not a plain file");
}

TEST_F(Descriptors, take_all_bytes_or_say_why_not) {
    const auto file = openToWrite();
    EXPECT_EQ(writeAll(file.number(), ""), 0);
    EXPECT_EQ(writeAll(file.number(), std::string(100'000, 'x')), 0);
    EXPECT_EQ(readFile(file_), std::string(100'000, 'x'));
    EXPECT_EQ(writeAll(openForReading(file_).value().number(), "x"), EBADF);
    const FileSizeLimit full(100'003);
    EXPECT_EQ(writeAll(file.number(), "yyyyy"), EFBIG);
    EXPECT_EQ(readFile(file_).size(), 100'003U);
}

}  // namespace
}  // namespace sonavault::testing
