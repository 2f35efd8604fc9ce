#include "platform/AppendFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/DiskFlusher.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

std::span<const std::uint8_t> bytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::unique_ptr<AppendFile> opened(const std::filesystem::path& file, DiskFlusher& flusher) {
    auto result = AppendFile::open(file, flusher);
    EXPECT_TRUE(result) << result.error();
    return std::move(result.value());
}

TEST(AppendFile, makes_a_file_and_shows_each_write_at_once) {
    TempFolder folder;
    DiskFlusher flusher;
    const auto file = opened(folder / "day.mp3", flusher);
    EXPECT_EQ(readFile(folder / "day.mp3"), "");
    EXPECT_TRUE(std::filesystem::exists(folder / "day.mp3"));
    EXPECT_TRUE(file->write(bytes("one")));
    EXPECT_EQ(readFile(folder / "day.mp3"), "one");
    EXPECT_TRUE(file->write({}));
    EXPECT_TRUE(file->write(bytes(std::string("\0two", 4))));
    EXPECT_EQ(readFile(folder / "day.mp3"), std::string("one\0two", 7));
}

TEST(AppendFile, continues_what_is_there) {
    TempFolder folder;
    DiskFlusher flusher;
    writeFile(folder / "day.mp3", "before ");
    EXPECT_TRUE(opened(folder / "day.mp3", flusher)->write(bytes("after ")));
    EXPECT_TRUE(opened(folder / "day.mp3", flusher)->write(bytes("later")));
    EXPECT_EQ(readFile(folder / "day.mp3"), "before after later");
}

TEST(AppendFile, writes_behind_what_another_appended_meanwhile) {
    TempFolder folder;
    DiskFlusher flusher;
    const auto one = opened(folder / "log.csv", flusher);
    const auto two = opened(folder / "log.csv", flusher);
    EXPECT_TRUE(one->write(bytes("1 one\n")));
    EXPECT_TRUE(two->write(bytes("2 two\n")));
    EXPECT_TRUE(one->write(bytes("3 one\n")));
    EXPECT_EQ(readFile(folder / "log.csv"), "1 one\n2 two\n3 one\n");
}

TEST(AppendFile, says_why_it_cannot_be_opened) {
    TempFolder folder;
    DiskFlusher flusher;
    const auto isFolder = AppendFile::open(folder.path(), flusher);
    ASSERT_FALSE(isFolder);
    EXPECT_EQ(isFolder.error(), "Is a directory");
    const auto missing = AppendFile::open(folder / "none" / "day.mp3", flusher);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error(), "No such file or directory");
}

TEST(AppendFile, waits_for_nobody_at_a_pipe) {
    TempFolder folder;
    DiskFlusher flusher;
    const auto pipe = folder / "day.mp3";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(AppendFile::open(pipe, flusher).error(), "No such device or address");
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(AppendFile::open(pipe, flusher).error(), "Not a plain file");
    EXPECT_EQ(AppendFile::open("/dev/null", flusher).error(), "Not a plain file");
    ::close(reader);
}

TEST(AppendFile, says_when_the_disk_is_full) {
    TempFolder folder;
    DiskFlusher flusher;
    const auto file = opened(folder / "day.mp3", flusher);
    const FileSizeLimit full(0);
    EXPECT_FALSE(file->write(bytes("one")));
    EXPECT_TRUE(file->write({}));
    EXPECT_EQ(readFile(folder / "day.mp3"), "");
}

TEST(AppendFile, takes_all_or_nothing_and_goes_on_when_there_is_room_again) {
    TempFolder folder;
    DiskFlusher flusher;
    const auto file = opened(folder / "day.mp3", flusher);
    EXPECT_TRUE(file->write(bytes("before")));
    const bool taken = [&] {
        const FileSizeLimit full(60);
        return file->write(bytes(std::string(100, 'x')));
    }();

    EXPECT_FALSE(taken);
    EXPECT_EQ(readFile(folder / "day.mp3"), "before");
    EXPECT_TRUE(file->write(bytes("y")));
    EXPECT_EQ(readFile(folder / "day.mp3"), "beforey");
}

}  // namespace
}  // namespace sonavault::testing
