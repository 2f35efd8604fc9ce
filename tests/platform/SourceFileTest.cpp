#include "platform/SourceFile.h"

#include <gtest/gtest.h>

#include <fstream>

#include "platform/AtomicFile.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/WithoutPrivileges.h"

namespace sonavault::testing {
namespace {

using CopyBy = SourceFile::CopyBy;

/// Bytes of which no two stretches are alike.
std::string someBytes(std::size_t count) {
    std::string bytes(count, '\0');
    std::uint32_t state = 1;
    for (char& each : bytes) {
        state = state * 1664525U + 1013904223U;
        each = static_cast<char>(state >> 24U);
    }
    return bytes;
}

class SourceFileTest : public ::testing::TestWithParam<CopyBy> {
  protected:
    SourceFile source(std::string_view bytes) const {
        writeFile(file_, bytes);
        return std::move(SourceFile::open(file_).value());
    }

    Result<Done, CopyFailure> write(const SourceFile& source, const std::vector<ByteRange>& ranges,
                                    const std::stop_token& stop = {}) const {
        return source.writeRanges(ranges, copy_, stop, GetParam());
    }

    int entries() const {
        const std::filesystem::directory_iterator all(folder_.path());
        return static_cast<int>(std::distance(begin(all), end(all)));
    }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "day.mp3";
    const std::filesystem::path copy_ = folder_ / "cut.mp3";
};

TEST_P(SourceFileTest, joins_ranges_in_the_order_given) {
    const std::string bytes = someBytes(3'000'000);
    const SourceFile day = source(bytes);
    ASSERT_TRUE(write(day, {{2'000'001, 2'999'999}, {0, 7}, {5, 1'500'000}}));
    EXPECT_EQ(readFile(copy_),
              bytes.substr(2'000'001, 999'998) + bytes.substr(0, 7) + bytes.substr(5, 1'499'995));
}

TEST_P(SourceFileTest, replaces_a_file_and_makes_an_empty_one_of_no_ranges) {
    const SourceFile day = source("bytes of a day");
    writeFile(copy_, "something longer than the new content");
    ASSERT_TRUE(write(day, {{0, 5}}));
    EXPECT_EQ(readFile(copy_), "bytes");
    ASSERT_TRUE(write(day, {}));
    EXPECT_EQ(readFile(copy_), "");
    EXPECT_EQ(entries(), 2);
}

TEST_P(SourceFileTest, may_replace_the_very_file_that_it_copies_from) {
    const std::string bytes = someBytes(500'000);
    const SourceFile day = source(bytes);
    ASSERT_TRUE(day.writeRanges(std::vector<ByteRange>{{100'000, 400'000}}, file_, {}, GetParam()));
    EXPECT_EQ(readFile(file_), bytes.substr(100'000, 300'000));
}

TEST_P(SourceFileTest, copies_from_the_file_that_was_opened_when_another_takes_its_name) {
    const SourceFile day = source("the first one");
    writeFile(folder_ / "other", "the other one");
    std::filesystem::rename(folder_ / "other", file_);
    ASSERT_TRUE(write(day, {{4, 9}}));
    EXPECT_EQ(readFile(copy_), "first");
}

TEST_P(SourceFileTest, leaves_what_was_there_when_the_bytes_do_not_fit) {
    const SourceFile day = source(someBytes(100'000));
    writeFile(copy_, "old");
    const auto outcome = [&] {
        const FileSizeLimit full(30'000);
        return write(day, {{0, 90'000}});
    }();
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().words, "File too large");
    EXPECT_FALSE(outcome.error().ofSource);
    EXPECT_EQ(readFile(copy_), "old");
    EXPECT_EQ(entries(), 2);
}

TEST_P(SourceFileTest, leaves_nothing_when_it_is_stopped) {
    const SourceFile day = source(someBytes(1000));
    std::stop_source stop;
    stop.request_stop();
    const auto outcome = write(day, {{0, 1000}}, stop.get_token());
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().words, "Operation canceled");
    EXPECT_EQ(entries(), 1);
}

TEST_P(SourceFileTest, says_so_when_the_file_was_cut_short_since) {
    const SourceFile day = source(someBytes(1000));
    std::filesystem::resize_file(file_, 500);
    const auto outcome = write(day, {{400, 600}});
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().words, "No data available");
    EXPECT_TRUE(outcome.error().ofSource);
    EXPECT_EQ(entries(), 1);
}

TEST_P(SourceFileTest, says_why_a_folder_cannot_take_it) {
    const SourceFile day = source("x");
    const auto outcome = day.writeRanges({}, folder_ / "none" / "cut.mp3", {}, GetParam());
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().words, "No such file or directory");
    EXPECT_FALSE(outcome.error().ofSource);
}

TEST_P(SourceFileTest, keeps_the_mode_of_the_file_that_it_replaces) {
    const SourceFile day = source("bytes of a day");
    writeFile(copy_, "old");
    constexpr auto kMode = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    permissions(copy_, kMode);
    ASSERT_TRUE(write(day, {{0, 5}}));
    EXPECT_EQ(status(copy_).permissions(), kMode);
}

TEST_P(SourceFileTest, writes_where_a_symbolic_link_leads) {
    const SourceFile day = source("bytes of a day");
    writeFile(folder_ / "elsewhere" / "cut.mp3", "old");
    create_symlink("elsewhere/cut.mp3", copy_);
    ASSERT_TRUE(write(day, {{0, 5}}));
    EXPECT_TRUE(is_symlink(copy_));
    EXPECT_EQ(readFile(folder_ / "elsewhere" / "cut.mp3"), "bytes");
    std::filesystem::remove(folder_ / "elsewhere" / "cut.mp3");
    ASSERT_TRUE(write(day, {{9, 14}}));
    EXPECT_TRUE(is_symlink(copy_));
    EXPECT_EQ(readFile(copy_), "a day");
}

/// A folder with a file that anybody may write, and into which nobody may put a new one.
class ClosedFolder : public SourceFileTest {
  protected:
    void haveCut(std::string_view bytes) const {
        writeFile(cut_, bytes);
        std::filesystem::permissions(cut_, std::filesystem::perms(0666));
        std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
        std::filesystem::permissions(cut_.parent_path(), std::filesystem::perms(0555));
    }
    ~ClosedFolder() override {
        std::filesystem::permissions(cut_.parent_path(), std::filesystem::perms(0755));
    }

    const std::filesystem::path cut_ = folder_ / "closed" / "cut.mp3";
};

TEST_P(ClosedFolder, has_a_file_that_is_written_in_place) {
    const std::string bytes = someBytes(3'000'000);
    const SourceFile day = source(bytes);
    haveCut(someBytes(4'000'000));
    const WithoutPrivileges anybody;
    ASSERT_TRUE(anybody.works());
    ASSERT_FALSE(writeFileAtomically(cut_, "x")) << "the folder is not closed";
    ASSERT_TRUE(day.writeRanges(std::vector<ByteRange>{{2'000'000, 2'500'000}, {0, 7}}, cut_, {},
                                GetParam()));
    EXPECT_EQ(readFile(cut_), bytes.substr(2'000'000, 500'000) + bytes.substr(0, 7));
}

TEST_P(ClosedFolder, has_an_empty_file_rather_than_a_part) {
    const SourceFile day = source(someBytes(100'000));
    haveCut("old");
    const WithoutPrivileges anybody;
    ASSERT_TRUE(anybody.works());
    const FileSizeLimit full(30'000);
    const auto outcome = day.writeRanges(std::vector<ByteRange>{{0, 90'000}}, cut_, {}, GetParam());
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().words, "File too large");
    EXPECT_EQ(readFile(cut_), "");
}

TEST_P(ClosedFolder, takes_no_new_file_and_keeps_one_that_may_not_be_written) {
    const SourceFile day = source(someBytes(1000));
    haveCut("old");
    std::filesystem::permissions(cut_, std::filesystem::perms(0444));
    const WithoutPrivileges anybody;
    ASSERT_TRUE(anybody.works());
    for (const auto& output : {cut_, cut_.parent_path() / "new.mp3"})
        EXPECT_EQ(
            day.writeRanges(std::vector<ByteRange>{{0, 10}}, output, {}, GetParam()).error().words,
            "Permission denied");
    EXPECT_EQ(readFile(cut_), "old");
}

TEST_P(ClosedFolder, does_not_have_the_very_file_overwritten_that_is_copied_from) {
    haveCut("bytes of a day");
    const SourceFile day = std::move(SourceFile::open(cut_).value());
    const WithoutPrivileges anybody;
    ASSERT_TRUE(anybody.works());
    EXPECT_FALSE(day.writeRanges(std::vector<ByteRange>{{0, 5}}, cut_, {}, GetParam()));
    EXPECT_EQ(readFile(cut_), "bytes of a day");
}

INSTANTIATE_TEST_SUITE_P(CopiedBy, ClosedFolder, ::testing::Values(CopyBy::system, CopyBy::process),
                         [](const auto& each) {
                             return each.param == CopyBy::system ? "the_system" : "the_process";
                         });

INSTANTIATE_TEST_SUITE_P(CopiedBy, SourceFileTest,
                         ::testing::Values(CopyBy::system, CopyBy::process), [](const auto& each) {
                             return each.param == CopyBy::system ? "the_system" : "the_process";
                         });

TEST(SourceFile, shows_the_bytes_as_they_were_at_opening) {
    const TempFolder folder;
    writeFile(folder / "day.mp3", "bytes");
    const auto day = SourceFile::open(folder / "day.mp3");
    ASSERT_TRUE(day);
    std::ofstream(folder / "day.mp3", std::ios::app) << " and more";
    const auto bytes = day.value().bytes();
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "bytes");
}

TEST(SourceFile, says_why_it_cannot_be_opened) {
    const TempFolder folder;
    EXPECT_EQ(SourceFile::open(folder / "none").error(), "No such file or directory");
    EXPECT_EQ(SourceFile::open(folder.path()).error(), "Is a directory");
}

TEST(SourceFile, leaves_no_descriptor_open) {
    const TempFolder folder;
    writeFile(folder / "day.mp3", "bytes");
    const auto open = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    const auto before = open();
    {
        auto day = std::move(SourceFile::open(folder / "day.mp3").value());
        SourceFile moved = std::move(day);
        EXPECT_EQ(open(), before + 1);
        moved = std::move(SourceFile::open(folder / "day.mp3").value());
        EXPECT_FALSE(SourceFile::open(folder.path()));
    }
    EXPECT_EQ(open(), before);
}

TEST(SourceFile, knows_where_a_hole_ends) {
    const TempFolder folder;
    const auto file = folder / "sparse";
    writeFile(file, "begin");
    std::filesystem::resize_file(file, 1U << 30U);
    std::ofstream(file, std::ios::app) << "end";
    std::filesystem::resize_file(file, std::uintmax_t{3} << 30U);
    const auto sparse = SourceFile::open(file);
    ASSERT_TRUE(sparse);
    const std::int64_t data = sparse.value().nextData(1 << 20);
    EXPECT_GT(data, 1 << 29);
    EXPECT_LE(data, 1 << 30);
    EXPECT_EQ(sparse.value().nextData(2), 2);
    EXPECT_EQ(sparse.value().nextData(std::int64_t{2} << 30U), std::int64_t{3} << 30U);
    EXPECT_EQ(sparse.value().nextData(std::int64_t{3} << 30U), std::int64_t{3} << 30U);
}

}  // namespace
}  // namespace sonavault::testing
