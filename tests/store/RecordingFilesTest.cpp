#include "store/RecordingFiles.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace sonavault {
namespace {

using testing::TempFolder;
using testing::writeFile;

TEST(RecordingDate, is_the_date_in_the_name_of_a_days_audio) {
    EXPECT_EQ(recordingDate("Sonavault_2026-05-08.mp3"), "2026-05-08");
    EXPECT_EQ(recordingDate("/any/folder/Sonavault_2026-05-08.m4a"), "2026-05-08");
}

TEST(RecordingDate, minds_capitals_in_the_name_and_not_in_the_suffix) {
    EXPECT_EQ(recordingDate("Sonavault_2026-05-08.MP3"), "2026-05-08");
    EXPECT_EQ(recordingDate("Sonavault_2026-05-08.M4a"), "2026-05-08");
    EXPECT_EQ(recordingDate("sonavault_2026-05-08.mp3"), std::nullopt);
    EXPECT_EQ(recordingDate("SONAVAULT_2026-05-08.mp3"), std::nullopt);
}

TEST(RecordingDate, is_nothing_for_any_other_name) {
    for (const auto* name :
         {"Sonavault_2026-05-08_copy.mp3", "Sonavault_2026-05-08.mp3.part", "Sonavault_.mp3",
          "Sonavault_2026-5-08.mp3", "2026-05-08.mp3", "Sonavault_2026-05-08", ".mp3", "",
          "Sonavault_2026-05-08.csv", "Sonavault_2026-05-08.m4a.orphan-0.bak",
          "Sonavault_2026-05-08.", "Sonavault_2026-05-08.m4a.sb-1234"})
        EXPECT_EQ(recordingDate(name), std::nullopt) << name;
}

TEST(RecordingDate, goes_by_the_shape_of_a_date_alone) {
    EXPECT_EQ(recordingDate("Sonavault_2026-13-45.mp3"), "2026-13-45");
}

TEST(EntriesOf, are_all_direct_entries_in_the_order_of_their_names) {
    const TempFolder folder;
    writeFile(folder / "b", "");
    writeFile(folder / ".hidden", "");
    writeFile(folder.path() / "a" / "below", "");
    EXPECT_EQ(entriesOf(folder.path()),
              (std::vector<std::filesystem::path>{folder / ".hidden", folder / "a", folder / "b"}));
}

TEST(EntriesOf, are_nothing_for_what_is_missing_or_a_file) {
    const TempFolder folder;
    writeFile(folder / "file", "");
    EXPECT_EQ(entriesOf(folder / "missing"), std::nullopt);
    EXPECT_EQ(entriesOf(folder / "file"), std::nullopt);
    EXPECT_EQ(entriesOf({}), std::nullopt);
}

TEST(RecordingsFolder, is_the_stations_audio_folder_whether_it_exists_or_not) {
    const TempFolder home;
    const StationFolder station(home.path(), Preferences(home / "shared.conf"));
    EXPECT_EQ(station.recordingsFolder(), std::nullopt);
    const auto usual = home.path() / "Calderwave" / "Station";
    std::filesystem::create_directories(usual);
    EXPECT_EQ(station.recordingsFolder(), usual / "Logs" / "Audio");
}

}  // namespace
}  // namespace sonavault
