#include "platform/MappedFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <type_traits>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

std::string textOf(const MappedFile& mapped) {
    const auto bytes = mapped.bytes();
    return {bytes.begin(), bytes.end()};
}

MappedFile opened(const std::filesystem::path& file) {
    auto mapped = MappedFile::open(file);
    if (!mapped) throw std::runtime_error(mapped.error());
    return std::move(mapped.value());
}

TEST(MappedFile, shows_every_byte_of_the_file) {
    TempFolder folder;
    std::string content(10'000, ' ');
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7);
    writeFile(folder / "a", content);
    EXPECT_EQ(textOf(opened(folder / "a")), content);
}

TEST(MappedFile, reads_the_same_bytes_whatever_order_was_announced) {
    TempFolder folder;
    writeFile(folder / "a", "one two three");
    const auto mapped = MappedFile::open(folder / "a", MappedFile::Order::frontToBack);
    ASSERT_TRUE(mapped);
    EXPECT_EQ(textOf(mapped.value()), "one two three");
}

TEST(MappedFile, gives_no_bytes_and_no_error_for_an_empty_file) {
    TempFolder folder;
    writeFile(folder / "a", "");
    const auto mapped = MappedFile::open(folder / "a");
    ASSERT_TRUE(mapped);
    EXPECT_TRUE(mapped.value().bytes().empty());
}

TEST(MappedFile, says_in_words_that_there_is_no_such_file) {
    TempFolder folder;
    const auto mapped = MappedFile::open(folder / "a");
    ASSERT_FALSE(mapped);
    EXPECT_EQ(mapped.error(), "No such file or directory");
}

TEST(MappedFile, says_in_words_that_a_folder_is_no_file) {
    TempFolder folder;
    const auto mapped = MappedFile::open(folder.path());
    ASSERT_FALSE(mapped);
    EXPECT_EQ(mapped.error(), "Is a directory");
}

TEST(MappedFile, refuses_a_pipe_without_waiting_for_its_writer) {
    TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const auto mapped = MappedFile::open(folder / "pipe");
    ASSERT_FALSE(mapped);
    EXPECT_EQ(mapped.error(), "Not a plain file");
}

TEST(MappedFile, keeps_to_the_size_at_opening_while_the_file_grows) {
    TempFolder folder;
    writeFile(folder / "a", "before");
    const auto mapped = opened(folder / "a");
    std::ofstream(folder / "a", std::ios::app) << " and after";
    EXPECT_EQ(textOf(mapped), "before");
    EXPECT_EQ(textOf(opened(folder / "a")), "before and after");
}

TEST(MappedFile, keeps_its_bytes_when_the_file_is_replaced_or_deleted) {
    TempFolder folder;
    writeFile(folder / "a", "first");
    const auto mapped = opened(folder / "a");
    std::filesystem::remove(folder / "a");
    writeFile(folder / "a", "other");
    EXPECT_EQ(textOf(mapped), "first");
}

TEST(MappedFile, reads_zeros_where_another_program_has_cut_the_file_short) {
    TempFolder folder;
    constexpr std::size_t kSize = 1 << 20;
    writeFile(folder / "a", std::string(kSize, 'x'));
    const MappedFile mapped = opened(folder / "a");
    std::filesystem::resize_file(folder / "a", 4096);
    const auto bytes = mapped.bytes();
    EXPECT_EQ(bytes[4095], 'x');
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 'x'), 4096);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0), kSize - 4096);
}

TEST(MappedFile, moves_with_its_bytes_staying_where_they_are) {
    static_assert(!std::is_copy_constructible_v<MappedFile>);
    TempFolder folder;
    writeFile(folder / "a", "first");
    writeFile(folder / "b", "second");
    MappedFile one = opened(folder / "a");
    const auto* const address = one.bytes().data();
    MappedFile moved(std::move(one));
    EXPECT_EQ(moved.bytes().data(), address);
    EXPECT_EQ(textOf(moved), "first");

    MappedFile two = opened(folder / "b");
    two = std::move(moved);
    EXPECT_EQ(two.bytes().data(), address);
    EXPECT_EQ(textOf(two), "first");
}

}  // namespace
}  // namespace sonavault::testing
