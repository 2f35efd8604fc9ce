#include "store/StationFolder.h"

#include <gtest/gtest.h>

#include "support/Moments.h"
#include "support/RecordedLog.h"
#include "support/ScopedTimeZone.h"
#include "support/TempFolder.h"

namespace sonavault {
namespace {

using testing::at;
using testing::RecordedLog;
using testing::ScopedTimeZone;
using testing::TempFolder;
using testing::writeFile;

class StationFolderTest : public ::testing::Test {
  protected:
    void choose(const std::string& path) {
        Preferences(shared_).setText("StationFolderPath", path);
    }

    TempFolder temp_;
    RecordedLog log_;
    const ScopedTimeZone zone_{"Europe/Berlin"};
    const std::filesystem::path home_ = temp_ / "home";
    const std::filesystem::path shared_ = temp_ / "shared.conf";
    const std::filesystem::path usual_ = home_ / "Calderwave" / "Station";
    const StationFolder station_{home_, Preferences(shared_)};
};

TEST_F(StationFolderTest, is_absent_without_a_choice_and_without_the_usual_folder) {
    EXPECT_FALSE(station_.stationPath());
}

TEST_F(StationFolderTest, is_the_usual_folder_when_that_exists) {
    std::filesystem::create_directories(usual_);
    EXPECT_EQ(station_.stationPath(), usual_);
}

TEST_F(StationFolderTest, is_the_chosen_folder_when_that_exists) {
    std::filesystem::create_directories(usual_);
    const auto chosen = temp_ / "chosen";
    std::filesystem::create_directories(chosen);
    choose(chosen.string());
    EXPECT_EQ(station_.stationPath(), chosen);
}

TEST_F(StationFolderTest, falls_through_to_the_usual_folder_when_the_choice_is_empty_or_gone) {
    std::filesystem::create_directories(usual_);
    choose("");
    EXPECT_EQ(station_.stationPath(), usual_);
    choose((temp_ / "gone").string());
    EXPECT_EQ(station_.stationPath(), usual_);
}

TEST_F(StationFolderTest, may_be_anything_that_exists) {
    writeFile(temp_ / "file", "x");
    choose((temp_ / "file").string());
    EXPECT_EQ(station_.stationPath(), temp_ / "file");
}

TEST_F(StationFolderTest, is_asked_afresh_each_time) {
    EXPECT_FALSE(station_.stationPath());
    std::filesystem::create_directories(usual_);
    EXPECT_TRUE(station_.stationPath());
    std::filesystem::remove_all(usual_);
    EXPECT_FALSE(station_.stationPath());
}

TEST_F(StationFolderTest, gives_a_day_its_three_files_and_makes_the_folder) {
    std::filesystem::create_directories(usual_);
    const auto urls = station_.makeOutputURLs(at("2026-03-01T23:30:00.000Z"), log_);
    ASSERT_TRUE(urls);
    const auto folder = usual_ / "Logs" / "Audio";
    EXPECT_EQ(urls->audio, folder / "Sonavault_2026-03-02.mp3");
    EXPECT_EQ(urls->json, folder / "Sonavault_2026-03-02.json");
    EXPECT_EQ(urls->csv, folder / "Sonavault_2026-03-02.csv");
    EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST_F(StationFolderTest, records_into_the_documents_without_a_station) {
    const auto urls = station_.makeOutputURLs(at("2026-03-01T23:30:00.000Z"), log_);
    ASSERT_TRUE(urls);
    EXPECT_EQ(urls->audio.parent_path(), home_ / "Documents" / "Calderwave_Recordings");
    EXPECT_TRUE(std::filesystem::is_directory(urls->audio.parent_path()));
}

TEST_F(StationFolderTest, says_why_a_folder_cannot_be_made) {
    writeFile(temp_ / "file", "x");
    choose((temp_ / "file").string());
    EXPECT_FALSE(station_.makeOutputURLs(at("2026-03-01T23:30:00.000Z"), log_));
    ASSERT_EQ(log_.lines().size(), 1U);
    EXPECT_TRUE(log_.lines()[0].starts_with("Sonavault recorder: mkdir failed at " +
                                            (temp_ / "file").string() + "/Logs/Audio: "))
        << log_.lines()[0];
}

TEST(SidecarURL, has_the_audios_name_with_another_suffix) {
    EXPECT_EQ(sidecarURL("/d.x/Sonavault_2026-05-08.mp3", "peaks"),
              std::filesystem::path("/d.x/Sonavault_2026-05-08.peaks"));
}

}  // namespace
}  // namespace sonavault
