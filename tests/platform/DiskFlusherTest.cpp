#include "platform/DiskFlusher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/AppendFile.h"
#include "platform/AtomicFile.h"
#include "platform/RecordedSync.h"
#include "support/Eventually.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

constexpr std::chrono::milliseconds kShort{5};
constexpr std::chrono::hours kNever{24};

class DiskFlusherOn : public ::testing::Test {
  protected:
    void begin(std::chrono::milliseconds interval) { flusher_.emplace(interval, disk_.hooks()); }

    std::unique_ptr<AppendFile> open(const std::string& name) {
        auto result = AppendFile::open(folder_ / name, *flusher_);
        EXPECT_TRUE(result) << result.error();
        return std::move(result.value());
    }

    static void write(AppendFile& file) {
        static constexpr std::uint8_t kBytes[] = {1, 2, 3};
        EXPECT_TRUE(file.write(kBytes));
    }

    TempFolder folder_;
    RecordedSync disk_;
    std::optional<DiskFlusher> flusher_;
};

TEST_F(DiskFlusherOn, flushes_what_was_written_when_the_interval_is_over) {
    begin(kShort);
    const auto file = open("day.mp3");
    write(*file);
    EXPECT_TRUE(disk_.waitForData(folder_ / "day.mp3", 1));
    write(*file);
    EXPECT_TRUE(disk_.waitForData(folder_ / "day.mp3", 2));
}

TEST_F(DiskFlusherOn, does_not_flush_a_file_again_that_nobody_wrote_to) {
    begin(kShort);
    const auto still = open("still");
    const auto busy = open("busy");
    write(*still);
    ASSERT_TRUE(disk_.waitForData(folder_ / "still", 1));
    for (int round = 1; round <= 5; ++round) {
        write(*busy);
        ASSERT_TRUE(disk_.waitForData(folder_ / "busy", round));
    }
    EXPECT_EQ(disk_.dataCount(folder_ / "still"), 1);
}

TEST_F(DiskFlusherOn, tries_again_after_a_flush_that_failed) {
    begin(kShort);
    const auto file = open("day.mp3");
    ASSERT_TRUE(disk_.waitForWhole(folder_.path(), 1));
    disk_.failNext(2);
    write(*file);
    EXPECT_TRUE(disk_.waitForData(folder_ / "day.mp3", 1));
}

TEST_F(DiskFlusherOn, flushes_a_new_file_with_the_folder_that_names_it) {
    begin(kNever);
    const auto file = open("day.mp3");
    EXPECT_TRUE(disk_.waitForWhole(folder_ / "day.mp3", 1));
    EXPECT_TRUE(disk_.waitForWhole(folder_.path(), 1));
}

TEST_F(DiskFlusherOn, flushes_a_file_that_was_closed_without_waiting_for_the_interval) {
    begin(kNever);
    auto file = open("day.mp3");
    ASSERT_TRUE(disk_.waitForWhole(folder_.path(), 1));
    write(*file);
    EXPECT_EQ(disk_.dataCount(folder_ / "day.mp3"), 0);
    file.reset();
    EXPECT_TRUE(disk_.waitForData(folder_ / "day.mp3", 1));
}

TEST_F(DiskFlusherOn, flushes_a_named_file_and_its_folder_soon) {
    begin(kNever);
    ASSERT_TRUE(writeFileAtomically(folder_ / "day.json", "{}"));
    flusher_->flushSoon(folder_ / "day.json");
    EXPECT_TRUE(disk_.waitForWhole(folder_ / "day.json", 1));
    EXPECT_TRUE(disk_.waitForWhole(folder_.path(), 1));
}

TEST_F(DiskFlusherOn, flushes_the_folder_of_a_file_that_is_gone) {
    begin(kNever);
    flusher_->flushSoon(folder_ / "deleted.json");
    EXPECT_TRUE(disk_.waitForWhole(folder_.path(), 1));
}

TEST_F(DiskFlusherOn, lets_nobody_wait_while_the_disk_hangs) {
    begin(kShort);
    auto file = open("day.mp3");
    disk_.freeze();
    write(*file);
    ASSERT_TRUE(disk_.waitUntilSomeoneHangs());
    for (int i = 0; i < 1000; ++i) write(*file);
    flusher_->flushSoon(folder_ / "day.json");
    auto another = open("another");
    write(*another);
    file.reset();
    another.reset();
    EXPECT_TRUE(disk_.someoneHangs());
    EXPECT_EQ(std::filesystem::file_size(folder_ / "day.mp3"), 3003u);

    const int before = disk_.dataCount(folder_ / "day.mp3");
    disk_.thaw();
    EXPECT_TRUE(disk_.waitForData(folder_ / "day.mp3", before + 1));
    EXPECT_TRUE(disk_.waitForData(folder_ / "another", 1));
}

TEST_F(DiskFlusherOn, flushes_once_more_when_it_ends) {
    begin(kNever);
    const auto closed = folder_ / "closed";
    const auto named = folder_ / "named";
    writeFile(named, "x");
    auto file = open("closed");
    write(*file);
    file.reset();
    flusher_->flushSoon(named);
    flusher_.reset();
    EXPECT_EQ(disk_.dataCount(closed), 1);
    EXPECT_EQ(disk_.wholeCount(named), 1);
}

TEST_F(DiskFlusherOn, ends_though_the_disk_hangs) {
    begin(kShort);
    auto file = open("day.mp3");
    ASSERT_TRUE(disk_.waitForWhole(folder_.path(), 1));
    disk_.freeze();
    write(*file);
    ASSERT_TRUE(disk_.waitUntilSomeoneHangs());
    file.reset();
    flusher_.reset();
    EXPECT_TRUE(disk_.someoneHangs());
    disk_.thaw();
    EXPECT_TRUE(disk_.waitUntilNobodyHangs());
}

/// Counts what `sync` did. Both are kept for a thread that the flusher may leave behind.
std::function<int(int)> counting(const std::function<int(int)>& sync,
                                 const std::shared_ptr<std::atomic<int>>& successes) {
    return [sync, successes](int descriptor) {
        const int result = sync(descriptor);
        *successes += result == 0;
        return result;
    };
}

TEST(DiskFlusher, reaches_the_real_disk) {
    const auto real = DiskSync::ofTheSystem();
    const auto ofData = std::make_shared<std::atomic<int>>(0);
    const auto ofWhole = std::make_shared<std::atomic<int>>(0);
    TempFolder folder;
    DiskFlusher flusher(
        kShort, {.data = counting(real.data, ofData), .whole = counting(real.whole, ofWhole)});
    auto result = AppendFile::open(folder / "day.mp3", flusher);
    ASSERT_TRUE(result);
    EXPECT_TRUE(eventually([&] { return *ofWhole >= 2; })) << "the new file and its folder";
    const std::vector<std::uint8_t> bytes(10'000, 7);
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(result.value()->write(bytes));
    EXPECT_TRUE(eventually([&] { return *ofData >= 1; }));
    result.value().reset();
    EXPECT_EQ(std::filesystem::file_size(folder / "day.mp3"), 200'000u);
}

TEST(DiskFlusher, is_told_by_the_system_what_could_not_be_flushed) {
    const auto real = DiskSync::ofTheSystem();
    EXPECT_NE(real.data(-1), 0);
    EXPECT_NE(real.whole(-1), 0);
}

}  // namespace
}  // namespace sonavault::testing
