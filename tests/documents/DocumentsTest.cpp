// What the pages state, held to the code. A page that names a thing wrongly is worse than none.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <regex>
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

/// All that the first group of `pattern` matches in the files of `folder` with that suffix.
std::set<std::string> found(const std::filesystem::path& folder, const std::string& suffix,
                            const std::string& pattern) {
    std::set<std::string> all;
    const std::regex wanted(pattern);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != suffix) continue;
        const std::string text = readFile(entry.path());
        for (std::sregex_iterator at(text.begin(), text.end(), wanted), end; at != end; ++at)
            all.insert((*at)[1].str());
    }
    return all;
}

/// The cells of each table row of a page.
std::vector<std::vector<std::string>> rows(const std::string& text) {
    std::vector<std::vector<std::string>> all;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.front() != '|') continue;
        std::vector<std::string> cells;
        std::istringstream parts(line.substr(1));
        for (std::string cell; std::getline(parts, cell, '|');) {
            const auto first = cell.find_first_not_of(' ');
            const auto last = cell.find_last_not_of(' ');
            cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
        }
        all.push_back(cells);
    }
    return all;
}

TEST(Documents, list_every_preference) {
    const std::string readme = page("README.md");
    for (const std::string key : {kSourceModeKey, kAutoResumeOnLaunchKey, kActionBarHeightKey,
                                  kQualityLevelKey, kLastExportFolderKey, kScheduledAirchecksKey})
        EXPECT_TRUE(names(readme, "`" + key + "`")) << key;
}

TEST(Documents, know_no_preference_that_the_program_does_not_know) {
    const std::set<std::string> known{kSourceModeKey,       kAutoResumeOnLaunchKey,
                                      kActionBarHeightKey,  kQualityLevelKey,
                                      kLastExportFolderKey, kScheduledAirchecksKey};
    const auto named = found(kRoot / "docs", ".md",
                             "`((?:Sonavault|SV)[A-Z][A-Za-z]*(?:Key|Mode|Launch|Level|"
                             "Folder|Airchecks|Height))`");
    ASSERT_FALSE(named.empty());
    for (const auto& key : named) EXPECT_TRUE(known.contains(key)) << key;
}

TEST(Documents, tell_the_ports) {
    for (const char* name : {"README.md", "docs/operations.md"}) {
        EXPECT_TRUE(names(page(name), std::to_string(kAudioPort))) << name;
        EXPECT_TRUE(names(page(name), std::to_string(kMarkerPort))) << name;
    }
}

TEST(Documents, list_every_thread_that_has_a_name) {
    const std::string threads = page("docs/threads.md");
    const auto named = found(kRoot / "src", ".cpp", "nameThisThread\\(\"([^\"]+?)-?\"");
    ASSERT_GT(named.size(), 4U);
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
    std::vector<std::filesystem::path> pages{kRoot / "README.md", kRoot / "CHANGELOG.md"};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kRoot / "docs"))
        if (entry.path().extension() == ".md") pages.push_back(entry.path());
    const std::regex link("\\]\\(([^)#:]+)\\)");
    for (const auto& from : pages) {
        const std::string text = readFile(from);
        for (std::sregex_iterator at(text.begin(), text.end(), link), end; at != end; ++at) {
            ++links;
            EXPECT_TRUE(std::filesystem::exists(from.parent_path() / (*at)[1].str()))
                << from << " leads to " << (*at)[1];
        }
    }
    EXPECT_GT(links, 20);
}

constexpr auto kCommand = "(scripts/[a-z_.-]*[a-z])";

TEST(Documents, name_only_commands_that_exist) {
    auto named = found(kRoot / "docs", ".md", kCommand);
    const std::string readme = page("README.md");
    const std::regex wanted(kCommand);
    for (std::sregex_iterator at(readme.begin(), readme.end(), wanted), end; at != end; ++at)
        named.insert((*at)[1].str());
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

TEST(Documents, tell_what_is_said_on_the_hub) {
    const std::string hub = page("docs/formats/hub.md");
    for (const std::string name :
         {kSwitchboardTopicRecordingState, kSwitchboardTopicAircheckSaved,
          kSwitchboardTopicCadenzoPlaybackState, kSwitchboardStateKeyHeartbeat,
          kSwitchboardStateKeyCurrentRecording})
        EXPECT_TRUE(names(hub, name)) << name;
}

/// The key of a guide's cell such as "Shift and arrow", with the modifiers before it.
std::optional<KeyEvent> keyOf(const std::string& words) {
    KeyEvent key;
    if (names(words, "Shift")) key.modifierFlags |= kShiftKeyMask;
    if (names(words, "Ctrl")) key.modifierFlags |= kCommandKeyMask;
    std::smatch letter;
    if (names(words, "Space"))
        key.keyCode = kSpaceKeyCode;
    else if (names(words, "arrow"))
        key.keyCode = kRightArrowKeyCode;
    else if (std::regex_search(words, letter, std::regex("`(.)`|and ([A-Z])$")))
        key.charactersIgnoringModifiers = letter[1].matched ? letter[1].str() : letter[2].str();
    else
        return std::nullopt;
    if (!key.keyCode && !key.charactersIgnoringModifiers) return std::nullopt;
    return key;
}

TEST(Documents, tell_of_keys_what_they_do) {
    using enum KeyCommand;
    const std::vector<std::pair<std::string, KeyCommand>> meanings{
        {"play and stop", togglePlayback},
        {"the marker before and after", nextMarker},
        {"ten seconds back and on", tenSecondsOn},
        {"the hour before and after", nextHour},
        {"a selection begins at the playhead", markSelectionStart},
        {"it ends there", markSelectionEnd},
        {"removes all", clearAllSelections},
        {"takes the last change back", undoLastChange},
    };
    const auto guide = rows(page("docs/user-guide.md"));
    for (const auto& each : meanings) {
        const auto& meaning = each.first;
        const auto row = std::find_if(guide.begin(), guide.end(), [&](const auto& cells) {
            return cells.size() > 1 && names(cells[1], meaning);
        });
        ASSERT_NE(row, guide.end()) << meaning;
        const auto key = keyOf(row->at(0));
        ASSERT_TRUE(key) << row->at(0);
        EXPECT_EQ(keyCommand(*key, {}), each.second) << row->at(0);
    }
}

TEST(Documents, know_one_version_of_the_program) {
    EXPECT_TRUE(names(page("CMakeLists.txt"), std::string("VERSION ") + kSonavaultVersion));
}

}  // namespace
}  // namespace sonavault::testing
