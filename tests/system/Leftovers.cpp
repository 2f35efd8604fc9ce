#include "system/Leftovers.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace sonavault::testing {

namespace {

constexpr auto kSaid = "Sonavault recovery: ";

std::string day(const std::string& date, const std::string& ending) {
    return "Sonavault_" + date + "." + ending;
}

// Each file has a letter of its own, so that it is known again under another name.
std::string filled(std::size_t size, char letter) {
    return std::string(size, letter);
}

constexpr auto kLargestStub = "2026-01-01";  // an empty file with two stubs
constexpr auto kEmptyStubs = "2026-01-02";   // an empty file with empty stubs
constexpr auto kRealFile = "2026-01-03";     // a file with audio and two stubs
constexpr auto kMissing = "2026-01-04";      // a stub alone
constexpr auto kSecondCrash = "2026-01-05";  // as the third, with a stub kept from the last time
constexpr auto kEmptyMp3 = "2026-01-06";     // an empty MP3 with its sidecars
constexpr auto kUntouched = "2026-01-07";    // a day as it should be

void expectFile(const std::filesystem::path& file, const std::string& content) {
    EXPECT_TRUE(std::filesystem::exists(file)) << file;
    EXPECT_TRUE(readFile(file) == content) << file << " is another file";
}

void expectNone(const std::filesystem::path& file) {
    EXPECT_FALSE(std::filesystem::exists(file)) << file;
}

}  // namespace

void Leftovers::layOut(const std::filesystem::path& folder) const {
    const auto put = [&](const std::string& name, std::size_t size, char letter) {
        writeFile(folder / name, filled(size, letter));
    };
    put(day(kLargestStub, "m4a"), 0, ' ');
    put(day(kLargestStub, "m4a.sb-1a2b-first"), 100, 'a');
    put(day(kLargestStub, "m4a.sb-3c4d-second"), 900, 'b');
    put(day(kEmptyStubs, "m4a"), 0, ' ');
    put(day(kEmptyStubs, "m4a.sb-1"), 0, ' ');
    put(day(kEmptyStubs, "m4a.sb-2"), 0, ' ');
    put(day(kRealFile, "m4a"), 5'000, 'c');
    put(day(kRealFile, "m4a.sb-1"), 70, 'd');
    put(day(kRealFile, "m4a.sb-2"), 7'000, 'e');
    put(day(kMissing, "m4a.sb-1"), 300, 'f');
    put(day(kSecondCrash, "m4a"), 5'000, 'g');
    put(day(kSecondCrash, "m4a.orphan-0.bak"), 40, 'h');
    put(day(kSecondCrash, "m4a.sb-1"), 50, 'i');
    put(day(kEmptyMp3, "mp3"), 0, ' ');
    put(day(kEmptyMp3, "csv"), 30, 'j');
    put(day(kEmptyMp3, "json"), 30, 'k');
    put(day(kUntouched, "m4a"), 1'000, 'l');
    put(day(kUntouched, "csv"), 0, ' ');
    put(day(today_, "m4a"), 0, ' ');
    put(day(today_, "m4a.sb-1"), 2'000, 'm');
    put("Another_2026-01-08.mp3", 0, ' ');
    put("notes.txt", 0, ' ');
}

void Leftovers::expectSwept(const std::filesystem::path& folder,
                            const std::vector<std::string>& log) const {
    expectFile(folder / day(kLargestStub, "m4a"), filled(900, 'b'));
    expectFile(folder / day(kLargestStub, "m4a.orphan-0.bak"), filled(100, 'a'));
    expectNone(folder / day(kEmptyStubs, "m4a"));
    expectFile(folder / day(kRealFile, "m4a"), filled(5'000, 'c'));
    // Which of the two comes first is the folder's own order.
    const std::set<std::string> kept = {readFile(folder / day(kRealFile, "m4a.orphan-0.bak")),
                                        readFile(folder / day(kRealFile, "m4a.orphan-1.bak"))};
    EXPECT_TRUE(kept == std::set<std::string>({filled(70, 'd'), filled(7'000, 'e')}));
    expectNone(folder / day(kMissing, "m4a"));
    expectFile(folder / day(kMissing, "m4a.orphan-0.bak"), filled(300, 'f'));
    expectFile(folder / day(kSecondCrash, "m4a"), filled(5'000, 'g'));
    expectFile(folder / day(kSecondCrash, "m4a.orphan-0.bak"), filled(40, 'h'));
    expectNone(folder / day(kEmptyMp3, "mp3"));
    expectFile(folder / day(kEmptyMp3, "csv"), filled(30, 'j'));
    expectFile(folder / day(kEmptyMp3, "json"), filled(30, 'k'));
    expectFile(folder / day(kUntouched, "m4a"), filled(1'000, 'l'));
    expectFile(folder / day(kUntouched, "csv"), "");
    expectNone(folder / day(today_, "m4a"));
    expectFile(folder / "Another_2026-01-08.mp3", "");
    expectFile(folder / "notes.txt", "");

    int baks = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const auto name = entry.path().filename().string();
        EXPECT_EQ(name.find(".sb-"), std::string::npos) << name;
        baks += name.ends_with(".bak");
    }
    EXPECT_EQ(baks, 5);

    std::set<std::string> said;
    for (const auto& line : log)
        if (line.starts_with(kSaid)) said.insert(line.substr(std::string(kSaid).size()));
    EXPECT_EQ(said, expectedLines());
}

std::set<std::string> Leftovers::expectedLines() const {
    return {
        day(kLargestStub, "m4a.sb-3c4d-second") + " → " + day(kLargestStub, "m4a") + " (900 bytes)",
        "swept stale temp " + day(kEmptyStubs, "m4a.sb-1"),
        "swept stale temp " + day(kEmptyStubs, "m4a.sb-2"),
        "swept 0-byte stub " + day(kEmptyStubs, "m4a"),
        "swept stale temp " + day(kSecondCrash, "m4a.sb-1"),
        "swept 0-byte stub " + day(kEmptyMp3, "mp3"),
        "swept stale temp " + day(today_, "m4a.sb-1"),
        "swept 0-byte stub " + day(today_, "m4a")};
}

}  // namespace sonavault::testing
