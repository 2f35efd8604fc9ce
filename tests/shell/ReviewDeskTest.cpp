// The list of days and the day under review, in the program.

#include <QApplication>
#include <QtTest/QTest>
#include <algorithm>
#include <chrono>

#include "export/ExportFolder.h"
#include "shell/ShellFixture.h"
#include "store/MarkerLogWriter.h"
#include "store/PeaksFile.h"
#include "support/SyntheticMp3.h"
#include "views/DateRowView.h"

namespace sonavault::testing {
namespace {

class ReviewDeskTest : public ShellFixture {
  protected:
    const DayOnDisk twoMarkers_{.log = markerRow("08:00:00", "hour", "", 0) +
                                       markerRow("08:10:00", "break_start", "Spots", 120)};

    /// From the top.
    std::vector<DateRowView*> list() {
        std::vector<DateRowView*> rows;
        // A list that was built anew lets its old rows go at the next turn of the loop.
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (QWidget* each : controller().rootView().findChildren<QWidget*>())
            if (auto* row = dynamic_cast<DateRowView*>(each)) rows.push_back(row);
        std::sort(rows.begin(), rows.end(), [](const DateRowView* one, const DateRowView* other) {
            return one->y() < other->y();
        });
        return rows;
    }
    std::vector<std::string> rows() {
        std::vector<std::string> texts;
        for (const DateRowView* row : list()) {
            const DailyRecording& day = row->recording();
            texts.push_back(day.date + " " + day.recorded + " " + std::to_string(day.markerCount));
        }
        return texts;
    }
    void click(std::size_t row) { QTest::mouseClick(list().at(row), Qt::LeftButton); }

    static constexpr std::size_t kBucketsOfADay = 28'800;

    /// As a process leaves it that ended while it recorded.
    void haveStalePeaks(const std::string& date) {
        const auto peaks = fileOf(date, "peaks");
        ASSERT_TRUE(savePeaksFile({.bucketSec = 0.25, .rms = {0.5F}}, peaks));
        const auto grown = std::filesystem::last_write_time(fileOf(date, "mp3"));
        std::filesystem::last_write_time(peaks, grown - std::chrono::hours(1));
    }

    std::size_t bucketsShown() {
        const auto& peaks = controller().review().peaks().peaksData();
        return peaks ? peaks->rms.size() : 0;
    }

    template <class Condition>
    bool waitUntil(Condition condition) {
        return QTest::qWaitFor(
            [&] {
                mainQueue_.runAll();
                return condition();
            },
            20000);
    }

    LoadedDay& day() { return controller().review().day(); }
};

TEST_F(ReviewDeskTest, lists_the_days_and_loads_the_newest_at_launch) {
    haveDay("2026-02-28", twoMarkers_);
    haveDay("2026-03-01", twoMarkers_);
    launch();
    EXPECT_EQ(rows(), (std::vector<std::string>{"2026-03-01 02:00 2", "2026-02-28 02:00 2"}));
    EXPECT_EQ(day().loadedFileURL(), fileOf("2026-03-01"));
    EXPECT_TRUE(list().at(0)->isSelected());
}

TEST_F(ReviewDeskTest, sweeps_what_a_crash_left_before_the_days_are_listed) {
    writeFile(fileOf("2026-03-01"), "");
    haveDay("2026-02-28", twoMarkers_);
    launch();
    EXPECT_TRUE(log_.has("Sonavault recovery: swept 0-byte stub Sonavault_2026-03-01.mp3"));
    EXPECT_EQ(rows().size(), 1U);
}

TEST_F(ReviewDeskTest, loads_the_day_that_is_clicked) {
    haveDay("2026-02-28", twoMarkers_);
    haveDay("2026-03-01", twoMarkers_);
    launch();
    click(1);
    EXPECT_EQ(day().loadedFileURL(), fileOf("2026-02-28"));
    EXPECT_TRUE(list().at(1)->isSelected());
    EXPECT_FALSE(list().at(0)->isSelected());
}

TEST_F(ReviewDeskTest, alerts_when_the_clicked_day_cannot_be_opened) {
    haveDay("2026-02-28", twoMarkers_);
    haveDay("2026-03-01", twoMarkers_);
    launch();
    writeFile(fileOf("2026-02-28"), "no audio");
    click(1);
    ASSERT_EQ(alerts_.shown.size(), 1U);
    EXPECT_EQ(alerts_.shown[0].message, "Couldn't load recording");
    EXPECT_EQ(alerts_.shown[0].buttons, QStringList{"OK"});
    EXPECT_FALSE(day().loadedFileURL());
}

TEST_F(ReviewDeskTest, meets_today_within_seconds_of_its_first_recording) {
    haveDay("2026-03-01", twoMarkers_);
    launch();
    controller().toggleRecordingFromMenu();
    playSeconds(3, 0.5F);
    passSeconds(2.2);
    ASSERT_EQ(rows().size(), 2U);
    EXPECT_EQ(day().loadedFileURL(), dayFile());
    EXPECT_TRUE(list().at(0)->isSelected());
}

TEST_F(ReviewDeskTest, keeps_todays_row_fresh_while_it_is_recorded) {
    launch();
    controller().toggleRecordingFromMenu();
    playSeconds(62, 0.5F);
    passSeconds(2.2);
    EXPECT_EQ(rows(), std::vector<std::string>{"2026-03-02 00:01 0"});
    ASSERT_TRUE(appendMarkerRow(fileOf("2026-03-02", "csv"),
                                markerRow("14:05:00", "break_start", "", 30), flusher_));
    passSeconds(2.2);
    EXPECT_EQ(rows(), std::vector<std::string>{"2026-03-02 00:01 1"});
    EXPECT_EQ(day().allMarkers().size(), 1U);
}

TEST_F(ReviewDeskTest, lets_the_waveform_of_today_grow_as_it_is_recorded) {
    launch();
    controller().toggleRecordingFromMenu();
    playSeconds(3, 0.5F);
    passSeconds(2.2);
    ASSERT_TRUE(QTest::qWaitFor(
        [this] {
            mainQueue_.runAll();
            return controller().review().peaks().peaksData().has_value();
        },
        5000));
    const auto known = controller().review().peaks().peaksData()->rms.size();
    playSeconds(2, 0.5F);
    mainQueue_.runAll();
    EXPECT_GE(controller().review().peaks().peaksData()->rms.size(), known + 7);
}

TEST_F(ReviewDeskTest, writes_the_waveform_of_a_past_day_beside_it) {
    haveDay("2026-03-01", twoMarkers_);
    launch();
    EXPECT_TRUE(
        waitUntil([this] { return std::filesystem::exists(fileOf("2026-03-01", "peaks")); }));
}

TEST_F(ReviewDeskTest, measures_a_day_anew_that_went_on_after_its_waveform_was_made) {
    haveDay("2026-03-01");
    haveStalePeaks("2026-03-01");
    launch();
    EXPECT_TRUE(waitUntil([this] { return bucketsShown() == kBucketsOfADay; }));
    EXPECT_TRUE(waitUntil([this] {
        const auto kept = loadPeaksFile(fileOf("2026-03-01", "peaks"));
        return kept && kept.value().rms.size() == kBucketsOfADay;
    }));
}

TEST_F(ReviewDeskTest, shows_all_of_a_day_in_which_it_goes_on_recording_after_a_crash) {
    haveDay("2026-03-02");
    haveStalePeaks("2026-03-02");
    preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
    launch();
    ASSERT_TRUE(isRecording());
    EXPECT_TRUE(waitUntil([this] { return bucketsShown() >= kBucketsOfADay; }));
}

TEST_F(ReviewDeskTest, measures_the_day_under_review_anew_when_a_recording_goes_on_in_it) {
    haveDay("2026-03-02");
    ASSERT_TRUE(savePeaksFile({.bucketSec = 0.25, .rms = {0.5F}}, fileOf("2026-03-02", "peaks")));
    launch();
    ASSERT_EQ(bucketsShown(), 1U);
    controller().toggleRecordingFromMenu();
    const auto status = statusText();
    EXPECT_TRUE(waitUntil([this] { return bucketsShown() >= kBucketsOfADay; }));
    EXPECT_EQ(statusText(), status);
}

TEST_F(ReviewDeskTest, removes_at_launch_what_earlier_runs_were_writing_when_they_ended) {
    // No process has such an id.
    const auto* half = ".sonavault-99999999-0.tmp";
    const auto logs = temp_ / "home/Calderwave/Station/Logs";
    const std::vector<std::filesystem::path> folders{logs / "Audio", logs / "Airchecks",
                                                     temp_ / "cuts"};
    for (const auto& folder : folders) {
        writeFile(folder / half, "half");
        writeFile(folder / "cut.mp3", "whole");
    }
    preferences_.setText(kLastExportFolderKey, folders[2].string());
    launch();
    for (const auto& folder : folders) {
        EXPECT_TRUE(waitUntil([&] { return !std::filesystem::exists(folder / half); }));
        EXPECT_EQ(readFile(folder / "cut.mp3"), "whole");
    }
}

TEST_F(ReviewDeskTest, deletes_a_day_once_the_person_confirmed_it) {
    haveDay("2026-02-28", twoMarkers_);
    haveDay("2026-03-01", twoMarkers_);
    launch();
    controller().review().days().deleteRecording(*controller().review().days().rowOf("2026-03-01"));
    ASSERT_EQ(alerts_.shown.size(), 1U);
    EXPECT_EQ(alerts_.shown[0].message, "Delete 2026-03-01 (Sun)?");
    EXPECT_EQ(alerts_.shown[0].buttons, (QStringList{"Delete", "Cancel"}));
    EXPECT_EQ(rows().size(), 1U);
    EXPECT_EQ(day().loadedFileURL(), fileOf("2026-02-28"));
    EXPECT_FALSE(std::filesystem::exists(fileOf("2026-03-01", "csv")));
}

}  // namespace
}  // namespace sonavault::testing
