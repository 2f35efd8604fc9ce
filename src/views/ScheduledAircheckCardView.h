#pragma once

#include <QWidget>
#include <array>
#include <functional>

#include "export/ScheduledAircheckCard.h"
#include "views/CardControls.h"
#include "views/FlatButton.h"
#include "views/TextView.h"

namespace sonavault {

/// One rule of the schedule and the controls that change it. It works on a copy; whoever made the
/// view takes the changed card from `onChange`.
///
/// Thread: main.
class ScheduledAircheckCardView final : public QWidget {
  public:
    static constexpr QSize kSize{570, 300};

    ScheduledAircheckCardView(ScheduledAircheckCard card, QWidget* parent);
    ~ScheduledAircheckCardView() override;

    // The person did something. The view lives until the call returns: whoever takes it away in the
    // midst of one deletes it later.
    std::function<void(const ScheduledAircheckCard&)> onChange;
    std::function<void()> onAddBelow;
    std::function<void()> onRemove;

    const ScheduledAircheckCard& card() const { return card_; }

    /// Sets every control from the card.
    void updateControls();

    /// Takes over what the schedule has written since; what the person is editing stays as it is.
    void showLastRun(const std::string& lastRunDate);

    /// Takes a name that was typed but not yet left.
    void takeTitle();

    CardTextField* titleField = nullptr;
    CardCheckBox* activeCheck = nullptr;
    std::array<CardCheckBox*, 7> dayChecks{};
    CardPopUp* startHourPop = nullptr;
    CardPopUp* endHourPop = nullptr;
    CardRadioButton* liveRadio = nullptr;
    CardRadioButton* vtRadio = nullptr;
    TextView* lastRunLabel = nullptr;
    FlatButton* removeBtn = nullptr;
    FlatButton* addBtn = nullptr;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void buildControls();
    void buildTitle();
    void buildDays();
    void buildHours();
    void buildMode();
    void buildFoot();
    CardPopUp* hourPop(const QRect& frame, const QString& name, const QString& hint);

    void changed();
    void dayToggled(int day, bool on);
    void modeChanged(const std::string& mode);

    ScheduledAircheckCard card_;
};

}  // namespace sonavault
