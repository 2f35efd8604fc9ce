#include "platform/AtomicFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

std::size_t entriesOf(const std::filesystem::path& folder) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& each : std::filesystem::directory_iterator(folder)) ++count;
    return count;
}

TEST(AtomicFile, makes_a_file_and_replaces_it) {
    TempFolder folder;
    const std::string binary("a\0b\n\xff", 5);
    EXPECT_TRUE(writeFileAtomically(folder / "day.json", binary));
    EXPECT_EQ(readFile(folder / "day.json"), binary);
    EXPECT_TRUE(writeFileAtomically(folder / "day.json", "new"));
    EXPECT_EQ(readFile(folder / "day.json"), "new");
    EXPECT_TRUE(writeFileAtomically(folder / "day.json", ""));
    EXPECT_EQ(readFile(folder / "day.json"), "");
    EXPECT_EQ(entriesOf(folder.path()), 1u);
}

TEST(AtomicFile, writes_many_bytes) {
    TempFolder folder;
    const std::string bytes(5'000'000, 'x');
    EXPECT_TRUE(writeFileAtomically(folder / "peaks", bytes));
    EXPECT_EQ(readFile(folder / "peaks"), bytes);
}

TEST(AtomicFile, is_readable_by_others_as_far_as_the_person_allows) {
    TempFolder folder;
    const mode_t before = umask(0022);
    ASSERT_TRUE(writeFileAtomically(folder / "open", "x"));
    umask(0077);
    ASSERT_TRUE(writeFileAtomically(folder / "closed", "x"));
    umask(before);
    const auto modeOf = [&](const char* name) {
        struct stat found {};
        EXPECT_EQ(stat((folder / name).c_str(), &found), 0);
        return found.st_mode & 07777;
    };
    EXPECT_EQ(modeOf("open"), 0644u);
    EXPECT_EQ(modeOf("closed"), 0600u);
}

TEST(AtomicFile, says_why_a_folder_cannot_take_it) {
    TempFolder folder;
    const auto missing = writeFileAtomically(folder / "none" / "day.json", "x");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error(), "No such file or directory");

    writeFile(folder / "file", "x");
    const auto inFile = writeFileAtomically(folder / "file" / "day.json", "x");
    ASSERT_FALSE(inFile);
    EXPECT_EQ(inFile.error(), "Not a directory");
}

TEST(AtomicFile, leaves_no_temporary_behind_when_the_name_is_a_folder) {
    TempFolder folder;
    std::filesystem::create_directories(folder / "day.json" / "inside");
    const auto outcome = writeFileAtomically(folder / "day.json", "x");
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "Is a directory");
    EXPECT_EQ(entriesOf(folder.path()), 1u);
}

TEST(AtomicFile, keeps_the_old_content_and_leaves_no_temporary_when_the_bytes_do_not_fit) {
    TempFolder folder;
    ASSERT_TRUE(writeFileAtomically(folder / "day.json", "old"));
    const auto outcome = [&] {
        const FileSizeLimit full(1000);
        return writeFileAtomically(folder / "day.json", std::string(3000, 'x'));
    }();

    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "File too large");
    EXPECT_EQ(readFile(folder / "day.json"), "old");
    EXPECT_EQ(entriesOf(folder.path()), 1u);
}

TEST(AtomicFile, shows_a_reader_the_old_bytes_or_the_new_and_never_a_part) {
    TempFolder folder;
    const auto file = folder / "day.json";
    ASSERT_TRUE(writeFileAtomically(file, std::string(100'000, 'a')));
    std::atomic<bool> stop{false};
    std::vector<std::thread> writers;
    for (const char letter : {'a', 'b'})
        writers.emplace_back([&, letter] {
            while (!stop) EXPECT_TRUE(writeFileAtomically(file, std::string(100'000, letter)));
        });
    for (int i = 0; i < 300; ++i) {
        const std::string seen = readFile(file);
        EXPECT_EQ(seen.size(), 100'000u);
        EXPECT_EQ(seen.find_first_not_of(seen.front()), std::string::npos);
    }
    stop = true;
    for (auto& each : writers) each.join();
    EXPECT_EQ(entriesOf(folder.path()), 1u);
}

}  // namespace
}  // namespace sonavault::testing
