#include "platform/AtomicFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>
#include <vector>

#include "platform/ProcessTable.h"
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

TEST(AtomicFile, is_on_the_disk_before_its_name_leads_to_it) {
    TempFolder folder;
    const auto file = folder / "day.json";
    ASSERT_TRUE(writeFileAtomically(file, "old"));
    int flushes = 0;
    ASSERT_TRUE(writeFileThroughToDisk(file, "new", [&](int descriptor) {
        ++flushes;
        struct stat written {};
        EXPECT_EQ(fstat(descriptor, &written), 0);
        EXPECT_EQ(written.st_size, 3);
        EXPECT_EQ(readFile(file), "old");
        return 0;
    }));
    EXPECT_EQ(flushes, 1);
    EXPECT_EQ(readFile(file), "new");
    ASSERT_TRUE(writeFileThroughToDisk(file, "newer"));
    EXPECT_EQ(readFile(file), "newer");
}

TEST(AtomicFile, stays_as_it_was_when_the_disk_does_not_take_the_new_one) {
    TempFolder folder;
    ASSERT_TRUE(writeFileAtomically(folder / "day.json", "old"));
    const auto outcome =
        writeFileThroughToDisk(folder / "day.json", "new", [](int) { return EIO; });
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "Input/output error");
    EXPECT_EQ(readFile(folder / "day.json"), "old");
    EXPECT_EQ(entriesOf(folder.path()), 1u);
}

/// Of a process that has begun and does nothing, or has ended.
class Child {
  public:
    Child() : id_(fork()) {
        if (id_ != 0) return;
        for (;;) pause();
    }
    ~Child() { end(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    std::string temporary() const { return ".sonavault-" + std::to_string(id_) + "-0.tmp"; }
    void end() {
        if (std::exchange(hasEnded_, true)) return;
        kill(id_, SIGKILL);
        waitpid(id_, nullptr, 0);
    }

  private:
    const pid_t id_;
    bool hasEnded_ = false;
};

TEST(AbandonedTemporaries, are_those_of_processes_that_ended) {
    TempFolder folder;
    Child child;
    writeFile(folder / child.temporary(), "half a cut");
    removeAbandonedTemporaries(folder.path());
    EXPECT_EQ(readFile(folder / child.temporary()), "half a cut") << "it may still be writing";
    child.end();
    removeAbandonedTemporaries(folder.path());
    EXPECT_EQ(entriesOf(folder.path()), 0u);
}

TEST(AbandonedTemporaries, are_those_too_whose_makers_id_another_program_has_now) {
    TempFolder folder;
    writeFile(folder / ".sonavault-1-0.tmp", "half a cut");
    Child child;
    ASSERT_NE(programOfProcess(1), ownProgram());
    // Without the right to look at that process nothing is known of it.
    const bool isKnown = !programOfProcess(1).empty();
    removeAbandonedTemporaries(folder.path());
    EXPECT_EQ(entriesOf(folder.path()), isKnown ? 0u : 1u);
}

TEST(AbandonedTemporaries, are_not_those_that_somebody_writes) {
    TempFolder folder;
    Child child;
    child.end();
    const auto file = folder / child.temporary();
    writeFile(file, "half a cut");
    const int writer = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    removeAbandonedTemporaries(folder.path());
    EXPECT_TRUE(std::filesystem::exists(file)) << "as from another machine";
    close(writer);
    removeAbandonedTemporaries(folder.path());
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(AbandonedTemporaries, of_this_process_are_none_while_it_writes) {
    TempFolder folder;
    int seen = 0;
    ASSERT_TRUE(writeFileThroughToDisk(folder / "cut.mp3", "cut", [&](int) {
        removeAbandonedTemporaries(folder.path());
        return ++seen, 0;
    }));
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(readFile(folder / "cut.mp3"), "cut");
}

TEST(AbandonedTemporaries, bear_the_name_of_one_exactly) {
    TempFolder folder;
    Child child;
    child.end();
    const auto name = child.temporary();
    for (const auto& other : {std::string("cut.mp3"), name.substr(1), name + "x",
                              std::string(".sonavault-x-0.tmp"), std::string(".sonavault-.tmp"),
                              std::string(".sonavault--1-0.tmp"), std::string(".other-1-0.tmp")})
        writeFile(folder / other, "x");
    std::filesystem::create_directories(folder / name / "inside");
    removeAbandonedTemporaries(folder.path());
    EXPECT_EQ(entriesOf(folder.path()), 8u);
    removeAbandonedTemporaries(folder / "none");
    removeAbandonedTemporaries(folder / "cut.mp3");
    EXPECT_EQ(readFile(folder / "cut.mp3"), "x");
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
