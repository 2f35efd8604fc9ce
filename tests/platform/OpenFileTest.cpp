#include "platform/OpenFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

std::string readAt(const OpenFile& file, std::int64_t from, std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    bytes.resize(file.readAt(from, bytes));
    return {bytes.begin(), bytes.end()};
}

TEST(OpenFile, is_read_from_anywhere_up_to_its_end) {
    const TempFolder folder;
    writeFile(folder / "day.mp3", "0123456789");
    const auto file = OpenFile::open(folder / "day.mp3").value();
    EXPECT_EQ(readAt(*file, 3, 4), "3456");
    EXPECT_EQ(readAt(*file, 8, 4), "89");
    EXPECT_EQ(readAt(*file, 11, 4), "");
    EXPECT_EQ(readAt(*file, 0, 1), "0") << "no reader moves another's place";
}

TEST(OpenFile, stays_that_file_whatever_becomes_of_its_name) {
    const TempFolder folder;
    writeFile(folder / "day.mp3", "the day");
    const auto file = OpenFile::open(folder / "day.mp3").value();
    const auto stamp = fileStamp(folder / "day.mp3");
    EXPECT_EQ(file->stamp(), stamp);
    writeFile(folder / "other", "another day");
    std::filesystem::rename(folder / "other", folder / "day.mp3");
    EXPECT_EQ(readAt(*file, 0, 99), "the day");
    EXPECT_EQ(file->stamp()->inode, stamp->inode);
    std::filesystem::remove(folder / "day.mp3");
    EXPECT_EQ(readAt(*file, 4, 3), "day");
    EXPECT_EQ(file->name(), folder / "day.mp3");
}

TEST(OpenFile, shows_what_is_added_to_it) {
    const TempFolder folder;
    writeFile(folder / "day.mp3", "morning");
    const auto file = OpenFile::open(folder / "day.mp3").value();
    std::ofstream(folder / "day.mp3", std::ios::app) << ", noon";
    EXPECT_EQ(readAt(*file, 0, 99), "morning, noon");
    EXPECT_EQ(file->stamp()->size, 13);
}

TEST(OpenFile, is_none_of_what_is_no_plain_file) {
    const TempFolder folder;
    EXPECT_EQ(OpenFile::open(folder / "none").error(), "No such file or directory");
    EXPECT_EQ(OpenFile::open(folder.path()).error(), "Is a directory");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(OpenFile::open(folder / "pipe").error(), "Not a plain file");
}

}  // namespace
}  // namespace sonavault::testing
