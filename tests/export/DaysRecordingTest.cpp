#include "export/DaysRecording.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

class DaysRecordingTest : public ::testing::Test {
  protected:
    DaysRecordingTest() { writeFile(day_, "a day"); }

    bool isDays(const std::filesystem::path& output) const {
        return isDaysRecording(output, folders_);
    }

    TempFolder home_;
    const std::vector<std::filesystem::path> folders_{home_ / "none", home_ / "Audio"};
    const std::filesystem::path day_ = home_ / "Audio/Sonavault_2026-05-08.mp3";
};

TEST_F(DaysRecordingTest, is_what_is_named_so_in_its_folder) {
    EXPECT_TRUE(isDays(day_));
    EXPECT_TRUE(isDays(home_ / "Audio/../Audio/Sonavault_2026-05-08.mp3"));
    EXPECT_TRUE(isDays(home_ / "Audio/Sonavault_2026-05-09.mp3")) << "though there is none yet";
    EXPECT_TRUE(isDays(home_ / "Audio/Sonavault_2026-05-09.MP3"));
}

TEST_F(DaysRecordingTest, is_no_other_file) {
    EXPECT_FALSE(isDays(home_ / "Audio/2026-05-08_selections.mp3"));
    EXPECT_FALSE(isDays(home_ / "Sonavault_2026-05-08.mp3"));
}

TEST_F(DaysRecordingTest, is_what_links_lead_to) {
    create_symlink(day_, home_ / "one");
    create_symlink("one", home_ / "two");
    EXPECT_TRUE(isDays(home_ / "two"));
    create_symlink(home_ / "Audio/Sonavault_2026-05-09.mp3", home_ / "dangling");
    EXPECT_TRUE(isDays(home_ / "dangling"));
    create_hard_link(day_, home_ / "hard.mp3");
    EXPECT_TRUE(isDays(home_ / "hard.mp3"));
    create_directory_symlink(home_ / "Audio", home_ / "by the way");
    EXPECT_TRUE(isDays(home_ / "by the way/Sonavault_2026-05-09.mp3"));
    writeFile(home_ / "cut.mp3", "");
    create_hard_link(home_ / "cut.mp3", home_ / "same cut.mp3");
    EXPECT_FALSE(isDays(home_ / "cut.mp3"));
    create_symlink("round", home_ / "round");
    EXPECT_FALSE(isDays(home_ / "round"));
}

}  // namespace
}  // namespace sonavault::testing
