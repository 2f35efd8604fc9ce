// What the pages state, held to the code. A page that names a thing wrongly is worse than none.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "export/AircheckSchedule.h"
#include "export/ExportFolder.h"
#include "links/StationPorts.h"
#include "recorder/SVQualityLevel.h"
#include "review/KeyCommands.h"
#include "shell/ShellServices.h"
#include "shell/StationIntegration.h"
#include "store/Version.h"
#include "support/Matches.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

const std::filesystem::path kRoot = SONAVAULT_SOURCE;

std::string page(const std::string& name) {
    return readFile(kRoot / name);
}

bool names(const std::string& text, const std::string& what) {
    return text.find(what) != std::string::npos;
}

/// All that the first group of `pattern` matches in a text.
std::set<std::string> matches(const std::string& text, const std::string& pattern) {
    const auto all = matchesIn(text, QString::fromStdString(pattern));
    return {all.begin(), all.end()};
}

/// The same in the files of `folder` with that suffix.
std::set<std::string> found(const std::filesystem::path& folder, const std::string& suffix,
                            const std::string& pattern) {
    std::set<std::string> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.path().extension() == suffix) all.merge(matches(readFile(entry.path()), pattern));
    return all;
}

using Cells = std::vector<std::string>;

/// The cells of a line that is a table's row; none of any other line.
Cells cellsOf(const std::string& line) {
    Cells cells;
    if (line.empty() || line.front() != '|') return cells;
    std::istringstream parts(line.substr(1));
    for (std::string cell; std::getline(parts, cell, '|');) {
        const auto first = cell.find_first_not_of(' ');
        const auto last = cell.find_last_not_of(' ');
        cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
    }
    return cells;
}

/// The cells of each table row of a page.
std::vector<Cells> rows(const std::string& text) {
    std::vector<Cells> all;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (auto cells = cellsOf(line); !cells.empty()) all.push_back(std::move(cells));
    return all;
}

/// What stands in code quotes in the first cells of the table whose head is `head`.
std::set<std::string> firstCells(const std::string& text, const std::string& head) {
    std::set<std::string> all;
    std::istringstream lines(text.substr(std::min(text.find("\n" + head), text.size() - 1) + 1));
    for (std::string line; std::getline(lines, line) && !cellsOf(line).empty();)
        all.merge(matches(line, "^..`([^`]+)`"));
    return all;
}

/// All pages, CHANGELOG.md apart, which tells of the past.
std::vector<std::filesystem::path> pagesOfToday() {
    std::vector<std::filesystem::path> pages{kRoot / "README.md"};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kRoot / "docs"))
        if (entry.path().extension() == ".md") pages.push_back(entry.path());
    return pages;
}

TEST(Documents, list_every_preference_and_none_that_the_program_does_not_know) {
    const std::set<std::string> known{kSourceModeKey,       kAutoResumeOnLaunchKey,
                                      kActionBarHeightKey,  kQualityLevelKey,
                                      kLastExportFolderKey, kScheduledAirchecksKey};
    for (const char* name : {"README.md", "docs/operations.md"})
        EXPECT_EQ(firstCells(page(name), "| Key | Values |"), known) << name;
}

TEST(Documents, tell_the_ports) {
    for (const char* name : {"README.md", "docs/operations.md"}) {
        EXPECT_TRUE(names(page(name), std::to_string(kAudioPort))) << name;
        EXPECT_TRUE(names(page(name), std::to_string(kMarkerPort))) << name;
    }
}

TEST(Documents, list_every_thread_that_has_a_name) {
    const std::string threads = page("docs/threads.md");
    const auto named = found(kRoot / "src", ".cpp",
                             R"re((?:nameThisThread|thread_|BackgroundJob>?)\(\s*"([^"]+?)-?")re");
    ASSERT_GE(named.size(), 9U);
    for (const auto& name : named) EXPECT_TRUE(names(threads, "`" + name)) << name;
}

TEST(Documents, give_the_reason_for_every_package) {
    const std::string reasons = page("docs/dependencies.md");
    std::istringstream list(page("scripts/packages.list"));
    int packages = 0;
    for (std::string line; std::getline(list, line);) {
        if (line.empty() || line.front() == '#') continue;
        ++packages;
        EXPECT_TRUE(names(reasons, "`" + line + "`")) << line;
    }
    EXPECT_GT(packages, 20);
}

TEST(Documents, lead_nowhere_but_to_pages_that_exist) {
    int links = 0;
    auto pages = pagesOfToday();
    pages.push_back(kRoot / "CHANGELOG.md");
    for (const auto& from : pages)
        for (const auto& link : matchesIn(readFile(from), R"(\]\(([^)#:]+)\))")) {
            ++links;
            EXPECT_TRUE(std::filesystem::exists(from.parent_path() / link))
                << from << " leads to " << link;
        }
    EXPECT_GT(links, 20);
}

constexpr auto kCommand = "(scripts/[a-z_.-]*[a-z])";

TEST(Documents, name_only_commands_that_exist) {
    auto named = found(kRoot / "docs", ".md", kCommand);
    named.merge(matches(page("README.md"), kCommand));
    ASSERT_GT(named.size(), 5U);
    for (const auto& command : named)
        EXPECT_TRUE(std::filesystem::exists(kRoot / command)) << command;
}

TEST(Documents, describe_every_folder_of_the_sources) {
    const std::string architecture = page("docs/architecture.md");
    const std::string readme = page("README.md");
    for (const auto& entry : std::filesystem::directory_iterator(kRoot / "src")) {
        const std::string folder = entry.path().filename().string();
        EXPECT_TRUE(names(architecture, "| `" + folder + "` |")) << folder;
        EXPECT_TRUE(names(readme, "src/" + folder + "/")) << folder;
    }
}

TEST(Documents, describe_every_folder_of_the_tests) {
    const std::string readme = page("README.md");
    const std::string layout = readme.substr(readme.find("## Layout"));
    const std::string testing = page("docs/testing.md");
    int own = 0;
    for (const auto& entry : std::filesystem::directory_iterator(kRoot / "tests")) {
        const std::string folder = entry.path().filename().string();
        if (!entry.is_directory() || std::filesystem::exists(kRoot / "src" / folder)) continue;
        ++own;
        EXPECT_TRUE(names(layout, " " + folder + "/")) << folder;
        EXPECT_TRUE(names(testing, "`tests/" + folder + "`")) << folder;
    }
    EXPECT_GE(own, 6);
}

TEST(Documents, name_every_page_in_the_layout) {
    const std::string readme = page("README.md");
    const std::string layout = readme.substr(readme.find("## Layout"));
    int pages = 0;
    for (const auto& entry : std::filesystem::directory_iterator(kRoot / "docs")) {
        ++pages;
        const std::string name = entry.path().filename().string();
        EXPECT_TRUE(names(layout, " " + name + (entry.is_directory() ? "/" : ""))) << name;
    }
    EXPECT_GE(pages, 10);
}

TEST(Documents, list_every_benchmark_and_no_other) {
    const auto all = matches(page("bench/CMakeLists.txt"), "\\n *sonavault_benchmark\\(([a-z_]+)");
    ASSERT_GE(all.size(), 10U);
    EXPECT_EQ(matches(page("README.md"), "\\| `build/dev/bench_([a-z_]+)` \\|"), all);
    EXPECT_EQ(matches(page("docs/benchmarks.md"), "\\| `bench_([a-z_]+)` \\|"), all);
}

TEST(Documents, tell_what_is_said_on_the_hub) {
    const std::string hub = page("docs/formats/hub.md");
    for (const std::string name :
         {kSwitchboardTopicRecordingState, kSwitchboardTopicAircheckSaved,
          kSwitchboardTopicCadenzoPlaybackState, kSwitchboardStateKeyHeartbeat,
          kSwitchboardStateKeyCurrentRecording})
        EXPECT_TRUE(names(hub, name)) << name;
}

/// The keys of a guide's cell such as "Shift and arrow" or "`[` or `I`", each with the modifiers
/// that the cell names; of arrows the left one first.
std::vector<KeyEvent> keysOf(const std::string& words) {
    KeyEvent key;
    if (names(words, "Shift")) key.modifierFlags |= kShiftKeyMask;
    if (names(words, "Ctrl")) key.modifierFlags |= kCommandKeyMask;
    std::vector<std::uint16_t> codes;
    if (names(words, "Space")) codes = {kSpaceKeyCode};
    if (names(words, "arrow")) codes = {kLeftArrowKeyCode, kRightArrowKeyCode};
    std::vector<KeyEvent> keys;
    for (const auto code : codes) {
        keys.push_back(key);
        keys.back().keyCode = code;
    }
    auto letters = matches(words, "`(.)`");
    letters.merge(matches(words, "and ([A-Z])$"));
    for (const auto& letter : letters) {
        keys.push_back(key);
        keys.back().charactersIgnoringModifiers = letter;
    }
    return keys;
}

TEST(Documents, tell_of_keys_what_they_do) {
    using enum KeyCommand;
    struct Meaning {
        std::string words;
        std::vector<KeyCommand> commands;  ///< one for each key of the row
    };
    const std::vector<Meaning> meanings{
        {"play and stop", {togglePlayback}},
        {"the marker before and after", {previousMarker, nextMarker}},
        {"ten seconds back and on", {tenSecondsBack, tenSecondsOn}},
        {"the hour before and after", {previousHour, nextHour}},
        {"a selection begins at the playhead", {markSelectionStart, markSelectionStart}},
        {"it ends there", {markSelectionEnd, markSelectionEnd}},
        {"removes all", {clearAllSelections}},
        {"takes the last change back", {undoLastChange}},
    };
    const auto guide = rows(page("docs/user-guide.md"));
    for (const auto& meaning : meanings) {
        const auto row = std::find_if(guide.begin(), guide.end(), [&meaning](const auto& cells) {
            return cells.size() > 1 && names(cells[1], meaning.words);
        });
        ASSERT_NE(row, guide.end()) << meaning.words;
        const auto keys = keysOf(row->at(0));
        ASSERT_EQ(keys.size(), meaning.commands.size()) << row->at(0);
        for (std::size_t i = 0; i < keys.size(); ++i)
            EXPECT_EQ(keyCommand(keys[i], {}), meaning.commands[i])
                << row->at(0) << ", key " << i + 1;
    }
}

TEST(Documents, know_one_version_of_the_program) {
    EXPECT_TRUE(names(page("CMakeLists.txt"), std::string("VERSION ") + kSonavaultVersion));
    // A library that has such a version too is named before it.
    const QString version = R"((?<!libsoxr )(?<![0-9.])(0\.1\.[0-9]+))";
    int told = 0;
    for (const auto& from : pagesOfToday())
        for (const auto& each : matchesIn(readFile(from), version)) {
            ++told;
            EXPECT_EQ(each, kSonavaultVersion) << from;
        }
    EXPECT_GT(told, 0);
}

}  // namespace
}  // namespace sonavault::testing
