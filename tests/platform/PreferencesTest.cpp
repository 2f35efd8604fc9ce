#include "platform/Preferences.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/ScopedEnvironment.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

class PreferencesFile : public ::testing::Test {
  protected:
    /// As another process does it: a new file takes the old one's name.
    void rewrite(const std::string& content) const {
        writeFile(file_.parent_path() / "other", content);
        std::filesystem::rename(file_.parent_path() / "other", file_);
    }

    TempFolder folder_;
    std::filesystem::path file_ = folder_ / "config" / "domain.conf";
    Preferences preferences_{file_};
};

TEST_F(PreferencesFile, has_nothing_before_it_exists_and_makes_no_file_by_being_read) {
    EXPECT_FALSE(preferences_.contains("Key"));
    EXPECT_EQ(preferences_.text("Key"), std::nullopt);
    EXPECT_EQ(preferences_.integer("Key"), std::nullopt);
    EXPECT_EQ(preferences_.real("Key"), std::nullopt);
    EXPECT_EQ(preferences_.boolean("Key"), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(PreferencesFile, gives_back_what_was_set) {
    preferences_.setText("Text", "line_input");
    preferences_.setInteger("Integer", -9'000'000'000);
    preferences_.setReal("Real", 0.1);
    preferences_.setBoolean("Yes", true);
    preferences_.setBoolean("No", false);

    const Preferences again(file_);
    EXPECT_EQ(again.text("Text"), "line_input");
    EXPECT_EQ(again.integer("Integer"), -9'000'000'000);
    EXPECT_EQ(again.real("Real"), 0.1);
    EXPECT_EQ(again.boolean("Yes"), true);
    EXPECT_EQ(again.boolean("No"), false);
    EXPECT_TRUE(again.contains("No"));
    EXPECT_FALSE(again.contains("no"));
}

TEST_F(PreferencesFile, gives_back_any_text) {
    for (const std::string text :
         {"", "a, b", "/srv/Station; \"quoted\"", "@home", "@ByteArray(x)", "  spaces  ", "a=b",
          "Zürich 東京", "line\nfeed\ttab", "back\\slash", "[General]", "%20", "true", "3"}) {
        preferences_.setText("Text", text);
        EXPECT_EQ(Preferences(file_).text("Text"), text);
    }
}

TEST_F(PreferencesFile, takes_a_comma_that_a_hand_wrote_without_quotes_for_text) {
    for (const std::string text :
         {"/srv/Radio, Main", "/srv/Radio,Main", "/srv/a , b,  c", "/srv/Zürich, Höngg"}) {
        rewrite("[General]\nOther=1, 2\nPath = " + text + " \nLast=x\n");
        EXPECT_EQ(preferences_.text("Path"), text);
        EXPECT_EQ(preferences_.integer("Path"), std::nullopt);
    }
    rewrite("[General]\nPath=/srv/\"Radio\" , Main\n");
    EXPECT_EQ(preferences_.text("Path"), "/srv/Radio, Main");
}

TEST_F(PreferencesFile, gives_back_any_bytes) {
    std::string all;
    for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
    for (const std::string& bytes :
         {std::string(), std::string("[]"), std::string(R"([{"label":"Früh, \"a\""}])"), all,
          std::string("a)b("),
          std::string("\0"
                      "0001",
                      5)}) {
        preferences_.setBytes("Bytes", bytes);
        EXPECT_EQ(preferences_.bytes("Bytes"), bytes);
        // A file of another hand drops what this process remembers of the old one.
        rewrite(readFile(file_));
        EXPECT_EQ(Preferences(file_).bytes("Bytes"), bytes);
    }
}

TEST_F(PreferencesFile, tells_bytes_from_text) {
    preferences_.setBytes("Bytes", "abc");
    preferences_.setText("Text", "abc");
    EXPECT_EQ(readFile(file_), "[General]\nBytes=@ByteArray(abc)\nText=abc\n");
    EXPECT_EQ(preferences_.text("Bytes"), std::nullopt);
    EXPECT_EQ(preferences_.bytes("Text"), std::nullopt);
    EXPECT_EQ(preferences_.bytes("Absent"), std::nullopt);
    rewrite("[General]\nBytes=\"@ByteArray([1, 2])\"\n");
    EXPECT_EQ(preferences_.bytes("Bytes"), "[1, 2]");
}

TEST_F(PreferencesFile, is_on_disk_under_its_section_when_a_change_returns) {
    preferences_.setText("StationFolderPath", "/srv/Station");
    preferences_.setBoolean("Flag", true);
    EXPECT_EQ(readFile(file_), "[General]\nFlag=true\nStationFolderPath=/srv/Station\n");
    preferences_.setInteger("Flag", 7);
    EXPECT_EQ(readFile(file_), "[General]\nFlag=7\nStationFolderPath=/srv/Station\n");
}

TEST_F(PreferencesFile, leaves_no_other_file_behind) {
    preferences_.setInteger("One", 1);
    preferences_.setInteger("Two", 2);
    int files = 0;
    for (const auto& each : std::filesystem::directory_iterator(file_.parent_path()))
        files += each.path() == file_ ? 1 : 100;
    EXPECT_EQ(files, 1);
}

TEST_F(PreferencesFile, shows_a_change_by_another_process_at_the_next_read) {
    preferences_.setText("StationFolderPath", "/srv/old");
    EXPECT_EQ(preferences_.text("StationFolderPath"), "/srv/old");
    rewrite("[General]\nStationFolderPath=/srv/another\n");
    EXPECT_EQ(preferences_.text("StationFolderPath"), "/srv/another");
    rewrite("[General]\nOther=1\n");
    EXPECT_EQ(preferences_.text("StationFolderPath"), std::nullopt);
    EXPECT_TRUE(preferences_.contains("Other"));
    std::filesystem::remove(file_);
    EXPECT_FALSE(preferences_.contains("Other"));
    rewrite("[General]\nStationFolderPath=/srv/back\n");
    EXPECT_EQ(preferences_.text("StationFolderPath"), "/srv/back");
}

TEST_F(PreferencesFile, keeps_what_another_process_added_when_it_changes_a_key) {
    preferences_.setInteger("Mine", 1);
    rewrite("[General]\nMine=1\nTheirs=kept as it is\n\n[Window]\nwidth=10\n");
    preferences_.setInteger("Mine", 2);
    EXPECT_EQ(readFile(file_), "[General]\nMine=2\nTheirs=kept as it is\n\n[Window]\nwidth=10\n");
}

TEST_F(PreferencesFile, reads_what_a_person_typed) {
    rewrite(
        "[General]\nWhole=3\nFraction=3.5\nWord=abc\nEmpty=\nBig=99999999999999999999\n"
        "One=1\nNought=0\nTrue=true\nFalse=false\nYes=yes\nList=a, b\nBytes=@ByteArray(abc)\n"
        "Nothing=@Invalid()\nEndless=inf\nNan=nan\n");
    EXPECT_EQ(preferences_.integer("Whole"), 3);
    EXPECT_EQ(preferences_.real("Whole"), 3.0);
    EXPECT_EQ(preferences_.text("Whole"), "3");
    EXPECT_EQ(preferences_.boolean("Whole"), std::nullopt);
    EXPECT_EQ(preferences_.integer("Fraction"), std::nullopt);
    EXPECT_EQ(preferences_.real("Fraction"), 3.5);
    EXPECT_EQ(preferences_.integer("Big"), std::nullopt);
    EXPECT_EQ(preferences_.text("Empty"), "");
    for (const auto key : {"Word", "Empty", "Yes", "List", "Bytes", "Nothing"}) {
        EXPECT_EQ(preferences_.integer(key), std::nullopt) << key;
        EXPECT_EQ(preferences_.real(key), std::nullopt) << key;
        EXPECT_EQ(preferences_.boolean(key), std::nullopt) << key;
    }
    EXPECT_EQ(preferences_.text("List"), "a, b") << "an unquoted comma, and no list";
    for (const auto key : {"Bytes", "Nothing"})
        EXPECT_EQ(preferences_.text(key), std::nullopt) << key;
    EXPECT_EQ(preferences_.real("Endless"), std::nullopt);
    EXPECT_EQ(preferences_.real("Nan"), std::nullopt);
    EXPECT_EQ(preferences_.boolean("One"), true);
    EXPECT_EQ(preferences_.boolean("True"), true);
    EXPECT_EQ(preferences_.boolean("Nought"), false);
    EXPECT_EQ(preferences_.boolean("False"), false);
}

TEST_F(PreferencesFile, reads_every_double_back_to_the_last_bit) {
    for (const double value : {1.0 / 3, 24133.0, 1e-300, -2.5e17, std::nextafter(1.0, 2.0),
                               std::numeric_limits<double>::max()}) {
        preferences_.setReal("Real", value);
        EXPECT_EQ(Preferences(file_).real("Real"), value);
    }
}

TEST_F(PreferencesFile, survives_one_that_is_no_preference_file) {
    rewrite(std::string("\0\xff\xfe[[[\n===\n", 11));
    EXPECT_EQ(preferences_.text("Key"), std::nullopt);
    preferences_.setText("Key", "value");
    EXPECT_EQ(preferences_.text("Key"), "value");
}

TEST(Preferences, keep_a_domain_in_the_configuration_folder_of_the_moment) {
    const ScopedEnvironment home("HOME", "/home/ada");
    {
        const ScopedEnvironment configuration("XDG_CONFIG_HOME", "/etc/ada");
        EXPECT_EQ(Preferences::fileForDomain("com.example.one"), "/etc/ada/com.example.one.conf");
    }
    for (const std::optional<std::string>& unusable :
         {std::optional<std::string>(), std::optional<std::string>(""),
          std::optional<std::string>("relative")}) {
        const ScopedEnvironment configuration("XDG_CONFIG_HOME", unusable);
        EXPECT_EQ(Preferences::fileForDomain("com.example.one"),
                  "/home/ada/.config/com.example.one.conf");
    }
}

TEST(HomeFolder, is_read_from_the_environment_at_each_call) {
    {
        const ScopedEnvironment home("HOME", "/home/ada");
        EXPECT_EQ(homeFolder(), "/home/ada");
    }
    {
        const ScopedEnvironment home("HOME", "/home/bob");
        EXPECT_EQ(homeFolder(), "/home/bob");
    }
    const ScopedEnvironment home("HOME", std::nullopt);
    EXPECT_TRUE(homeFolder().is_absolute());
}

}  // namespace
}  // namespace sonavault::testing
