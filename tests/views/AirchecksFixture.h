#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QTest>
#include <memory>
#include <string>

#include "export/AircheckSchedule.h"
#include "platform/LocalTime.h"
#include "support/ManualClock.h"
#include "support/ManualQueue.h"
#include "support/TempFolder.h"
#include "views/AirchecksTabView.h"

namespace sonavault::testing {

/// A desk at which no export is made.
class QuietDesk final : public ExportHost, public ExportedDay {
  public:
    std::optional<std::filesystem::path> loadedFileURL() const override { return std::nullopt; }
    DaySeconds currentRecordingOffset() const override { return {}; }
    std::string selectedDate() const override { return {}; }
    std::vector<Selection> selections() const override { return {}; }
    std::vector<std::filesystem::path> recordingsFolders() const override { return {}; }
    std::size_t showAlert(const ExportAlert&) override { return 0; }
    AircheckAnswer askForAircheck(const AircheckQuestion&) override { return {}; }
    std::optional<std::filesystem::path> chooseOutput(const SavePanel&) override {
        return std::nullopt;
    }
    void setStatusBarText(const std::string&) override {}
    void revealInFileViewer(const std::filesystem::path&) override {}
    void publishAircheckSaved(const AircheckSaved&) override {}
};

/// A schedule with its stored cards, and the tab that edits them on a screen of its own.
class AirchecksFixture : public ::testing::Test {
  protected:
    static ScheduledAircheckCard namedCard(const std::string& label) {
        auto card = ScheduledAircheckCard::newDraft();
        card.label = label;
        return card;
    }

    /// What the program finds stored when it starts.
    void store(std::vector<ScheduledAircheckCard> cards) {
        cards_ = std::move(cards);
        schedule_.saveScheduledAirchecks();
        cards_.clear();
    }

    AirchecksTabView& open(QSize size = {1480, 748}) {
        tab_ = std::make_unique<AirchecksTabView>(schedule_, nullptr);
        tab_->resize(size);
        tab_->show();
        tab_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(tab_.get()));
        return *tab_;
    }

    ScheduledAircheckCardView& card(std::size_t index) { return *tab_->cardViews().at(index); }

    std::vector<std::string> storedLabels() const {
        std::vector<std::string> labels;
        for (const auto& each : schedule_.loadScheduledAirchecks()) labels.push_back(each.label);
        return labels;
    }

    static void click(QWidget* control) { QTest::mouseClick(control, Qt::LeftButton); }

    TempFolder home_;
    QuietDesk desk_;
    ManualQueue mainQueue_;
    Preferences preferences_{home_ / "sonavault.conf"};
    const StationFolder station_{home_.path(), Preferences(home_ / "shared.conf")};
    ManualClock clock_{WallTime{}};
    FrameExporter exporter_{desk_, mainQueue_};
    AircheckSchedule schedule_{{desk_, desk_, exporter_, preferences_, station_, clock_}};
    std::vector<ScheduledAircheckCard>& cards_ = schedule_.scheduledAirchecks();
    std::unique_ptr<AirchecksTabView> tab_;
};

}  // namespace sonavault::testing
