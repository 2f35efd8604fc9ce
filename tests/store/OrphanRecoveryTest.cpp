#include "store/OrphanRecovery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/LocalTime.h"
#include "support/ManualClock.h"
#include "support/MeddlingLog.h"
#include "support/RecordedLog.h"
#include "support/ScopedTimeZone.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

const std::string kPast = "Sonavault_2026-05-07.m4a";
const std::string kToday = "Sonavault_2026-05-08.m4a";

class OrphanRecoveryTest : public ::testing::Test {
  protected:
    OrphanRecoveryTest() { fs::create_directories(folder_); }

    static WallTime eveningOfToday() {
        WallTime moment;
        EXPECT_TRUE(parseIso8601WithFraction("2026-05-08T20:00:00.000Z", moment));
        return moment;
    }

    /// A file of that size; its content tells which it was.
    void have(const std::string& name, std::size_t size) {
        std::string content = name;
        content.resize(size, '.');
        writeFile(folder_ / name, content);
    }

    void recover() { recoverOrphanedRecordings(station_, clock_, log_); }

    Names names() const {
        Names names;
        for (const auto& entry : fs::directory_iterator(folder_))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    /// What the file was called when the test made it.
    bool isWhatWas(const std::string& name, const std::string& was) const {
        return readFile(folder_ / name).starts_with(was);
    }

    const ScopedTimeZone zone_{"Europe/Berlin"};
    TempFolder home_;
    RecordedLog log_;
    ManualClock clock_{eveningOfToday()};
    const StationFolder station_{home_.path(), Preferences(home_ / "shared.conf")};
    const fs::path station_folder_ = home_.path() / "Calderwave" / "Station";
    const fs::path folder_ = station_folder_ / "Logs" / "Audio";
};

TEST_F(OrphanRecoveryTest, gives_an_empty_day_its_largest_stub_and_keeps_the_others_aside) {
    have(kPast, 0);
    have(kPast + ".sb-a", 100);
    have(kPast + ".sb-b", 900);
    recover();
    EXPECT_EQ(names(), (Names{kPast, kPast + ".orphan-0.bak"}));
    EXPECT_TRUE(isWhatWas(kPast, kPast + ".sb-b"));
    EXPECT_EQ(fs::file_size(folder_ / kPast), 900U);
    EXPECT_TRUE(isWhatWas(kPast + ".orphan-0.bak", kPast + ".sb-a"));
    EXPECT_THAT(log_.lines(), ElementsAre("Sonavault recovery: Sonavault_2026-05-07.m4a.sb-b → "
                                          "Sonavault_2026-05-07.m4a (900 bytes)"));
}

TEST_F(OrphanRecoveryTest, keeps_the_other_stubs_in_the_order_of_their_size) {
    have(kPast, 0);
    have(kPast + ".sb-a", 100);
    have(kPast + ".sb-b", 300);
    have(kPast + ".sb-c", 200);
    have(kPast + ".sb-d", 0);
    recover();
    EXPECT_TRUE(isWhatWas(kPast, kPast + ".sb-b"));
    EXPECT_TRUE(isWhatWas(kPast + ".orphan-0.bak", kPast + ".sb-c"));
    EXPECT_TRUE(isWhatWas(kPast + ".orphan-1.bak", kPast + ".sb-a"));
    EXPECT_EQ(fs::file_size(folder_ / (kPast + ".orphan-2.bak")), 0U);
    EXPECT_EQ(names().size(), 4U);
}

TEST_F(OrphanRecoveryTest, clears_a_day_away_of_which_all_stubs_are_empty) {
    have(kPast, 0);
    have(kPast + ".sb-a", 0);
    have(kPast + ".sb-b", 0);
    recover();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recovery: swept 0-byte stub Sonavault_2026-05-07.m4a",
                            "Sonavault recovery: swept stale temp Sonavault_2026-05-07.m4a.sb-a",
                            "Sonavault recovery: swept stale temp Sonavault_2026-05-07.m4a.sb-b"));
}

TEST_F(OrphanRecoveryTest, keeps_all_stubs_aside_where_the_day_has_audio) {
    have(kPast, 5000);
    have(kPast + ".sb-a", 100);
    have(kPast + ".sb-b", 9000);
    recover();
    EXPECT_EQ(names(), (Names{kPast, kPast + ".orphan-0.bak", kPast + ".orphan-1.bak"}));
    EXPECT_EQ(fs::file_size(folder_ / kPast), 5000U);
    EXPECT_TRUE(isWhatWas(kPast, kPast));
    EXPECT_TRUE(isWhatWas(kPast + ".orphan-0.bak", kPast + ".sb-a"));
    EXPECT_TRUE(isWhatWas(kPast + ".orphan-1.bak", kPast + ".sb-b"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, does_not_make_a_missing_day_again_from_its_stub) {
    have(kPast + ".sb-a", 100);
    recover();
    EXPECT_EQ(names(), (Names{kPast + ".orphan-0.bak"}));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, loses_a_stub_whose_name_aside_is_taken_since_an_earlier_crash) {
    have(kPast, 5000);
    have(kPast + ".orphan-0.bak", 70);
    have(kPast + ".sb-a", 100);
    have(kPast + ".sb-b", 200);
    recover();
    EXPECT_EQ(names(), (Names{kPast, kPast + ".orphan-0.bak", kPast + ".orphan-1.bak"}));
    EXPECT_TRUE(isWhatWas(kPast + ".orphan-0.bak", kPast + ".orphan-0.bak"));
    EXPECT_TRUE(isWhatWas(kPast + ".orphan-1.bak", kPast + ".sb-b"));
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recovery: swept stale temp Sonavault_2026-05-07.m4a.sb-a"));
}

TEST_F(OrphanRecoveryTest, sweeps_todays_stubs_and_empty_file_without_promoting_any) {
    have(kToday, 0);
    have(kToday + ".sb-a", 900);
    recover();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recovery: swept 0-byte stub Sonavault_2026-05-08.m4a",
                            "Sonavault recovery: swept stale temp Sonavault_2026-05-08.m4a.sb-a"));
}

TEST_F(OrphanRecoveryTest, leaves_todays_audio_and_sweeps_its_stubs) {
    have(kToday, 500);
    have(kToday + ".sb-a", 900);
    recover();
    EXPECT_EQ(names(), (Names{kToday}));
    EXPECT_EQ(fs::file_size(folder_ / kToday), 500U);
}

TEST_F(OrphanRecoveryTest, takes_today_in_local_time) {
    clock_.advance(2.5 * 3600);  // 00:30 of the 9th in Berlin
    have(kToday, 0);
    have(kToday + ".sb-a", 900);
    recover();
    EXPECT_EQ(names(), (Names{kToday}));
    EXPECT_EQ(fs::file_size(folder_ / kToday), 900U);
}

TEST_F(OrphanRecoveryTest, sweeps_an_empty_mp3_and_leaves_its_sidecars) {
    have("Sonavault_2026-05-08.mp3", 0);
    have("Sonavault_2026-05-08.csv", 0);
    have("Sonavault_2026-05-08.json", 10);
    recover();
    EXPECT_EQ(names(), (Names{"Sonavault_2026-05-08.csv", "Sonavault_2026-05-08.json"}));
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recovery: swept 0-byte stub Sonavault_2026-05-08.mp3"));
}

TEST_F(OrphanRecoveryTest, does_not_touch_what_bears_another_name) {
    have("Other_2026-05-07.mp3", 0);
    have("sonavault_2026-05-07.mp3", 0);
    have("Sonavault_2026-05-07.MP3", 0);
    have("Sonavault_2026-05-07.peaks", 0);
    have("Sonavault_2026-05-07.mp3", 10);
    have("notes.m4a.sb", 10);
    const auto before = names();
    recover();
    EXPECT_EQ(names(), before);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, sweeps_an_empty_file_by_the_beginning_and_end_of_its_name_alone) {
    have("Sonavault_.mp3", 0);
    have("Sonavault_2026-05-07_copy.m4a", 0);
    recover();
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, treats_each_day_by_itself) {
    const std::string other = "Sonavault_2026-05-06.m4a";
    have(kPast, 0);
    have(kPast + ".sb-a", 10);
    have(other, 0);
    have(other + ".sb-a", 20);
    recover();
    EXPECT_EQ(names(), (Names{other, kPast}));
    EXPECT_EQ(fs::file_size(folder_ / other), 20U);
    EXPECT_EQ(fs::file_size(folder_ / kPast), 10U);
}

TEST_F(OrphanRecoveryTest, takes_the_first_mark_of_a_name_that_has_it_twice) {
    have(kPast, 0);
    have(kPast + ".sb-a.m4a.sb-b", 80);
    recover();
    EXPECT_EQ(names(), (Names{kPast}));
    EXPECT_EQ(fs::file_size(folder_ / kPast), 80U);
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recovery: Sonavault_2026-05-07.m4a.sb-a.m4a.sb-b → "
                            "Sonavault_2026-05-07.m4a (80 bytes)"));
}

TEST_F(OrphanRecoveryTest, drops_every_half_of_the_mark_from_the_name_of_the_day) {
    have("x.sb-y.m4a.sb-z", 80);
    have("xy.m4a", 0);
    recover();
    EXPECT_EQ(names(), (Names{"xy.m4a"}));
    EXPECT_EQ(fs::file_size(folder_ / "xy.m4a"), 80U);
}

TEST_F(OrphanRecoveryTest, tells_which_stub_could_not_be_given_the_name_of_its_day) {
    const std::string first = "Sonavault_2026-05-06.m4a";
    have(first, 0);
    have(first + ".sb-a", 10);
    have(kPast, 0);
    have(kPast + ".sb-a", 100);
    have(kPast + ".sb-b", 900);
    MeddlingLog log(log_, [this] { fs::remove(folder_ / (kPast + ".sb-b")); });
    recoverOrphanedRecordings(station_, clock_, log);
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recovery: Sonavault_2026-05-06.m4a.sb-a → "
                            "Sonavault_2026-05-06.m4a (10 bytes)",
                            "Sonavault recovery: rename failed for "
                            "Sonavault_2026-05-07.m4a.sb-b: No such file or directory",
                            "Sonavault recovery: swept stale temp Sonavault_2026-05-07.m4a.sb-a"));
    EXPECT_EQ(names(), (Names{first}));
}

TEST_F(OrphanRecoveryTest, counts_a_folder_in_a_days_place_as_a_day_that_is_not_empty) {
    fs::create_directories(folder_ / kPast);
    have(kPast + ".sb-a", 100);
    recover();
    EXPECT_EQ(names(), (Names{kPast, kPast + ".orphan-0.bak"}));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, leaves_folders_that_bear_its_names_and_have_something_in_them) {
    writeFile(folder_ / (kToday + ".sb-a") / "inside", "x");
    writeFile(folder_ / "Sonavault_2026-05-07.mp3" / "inside", "x");
    recover();
    EXPECT_EQ(readFile(folder_ / (kToday + ".sb-a") / "inside"), "x");
    EXPECT_EQ(readFile(folder_ / "Sonavault_2026-05-07.mp3" / "inside"), "x");
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, never_promotes_a_folder) {
    have(kPast, 0);
    writeFile(folder_ / (kPast + ".sb-a") / "inside", "x");
    have(kPast + ".sb-b", 100);
    recover();
    EXPECT_EQ(fs::file_size(folder_ / kPast), 100U);
    EXPECT_EQ(readFile(folder_ / (kPast + ".orphan-0.bak") / "inside"), "x");
}

TEST_F(OrphanRecoveryTest, counts_a_link_that_leads_nowhere_as_empty) {
    have(kPast, 0);
    fs::create_symlink("nowhere", folder_ / (kPast + ".sb-a"));
    recover();
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, does_nothing_without_a_station_folder) {
    const auto documents = home_.path() / "Documents" / "Calderwave_Recordings";
    writeFile(documents / "Sonavault_2026-05-07.mp3", "");
    fs::remove_all(station_folder_);
    recover();
    EXPECT_TRUE(fs::exists(documents / "Sonavault_2026-05-07.mp3"));
    EXPECT_FALSE(fs::exists(station_folder_));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, does_nothing_when_the_folder_cannot_be_listed) {
    fs::remove_all(folder_);
    recover();
    EXPECT_FALSE(fs::exists(folder_));
    writeFile(folder_, "a file in its place");
    recover();
    EXPECT_EQ(readFile(folder_), "a file in its place");
    fs::remove_all(station_folder_);
    writeFile(station_folder_, "the station is a file");
    recover();
    EXPECT_EQ(readFile(station_folder_), "the station is a file");
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(OrphanRecoveryTest, changes_nothing_more_when_it_runs_again) {
    have(kPast, 0);
    have(kPast + ".sb-a", 100);
    have(kPast + ".sb-b", 900);
    recover();
    const auto after = names();
    log_.clear();
    recover();
    EXPECT_EQ(names(), after);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

}  // namespace
}  // namespace sonavault::testing
