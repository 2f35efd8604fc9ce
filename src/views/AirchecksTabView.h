#pragma once

#include <QWidget>
#include <vector>

#include "export/AircheckSchedule.h"
#include "views/CardsScrollView.h"
#include "views/ScheduledAircheckCardView.h"

namespace sonavault {

/// The tab in which the rules of the weekly airchecks are written, one card each. Every change is
/// stored at once.
///
/// Thread: main.
class AirchecksTabView final : public QWidget {
  public:
    /// Reads the stored cards into `schedule`, which outlives this view; there is always one card.
    AirchecksTabView(AircheckSchedule& schedule, QWidget* parent);
    ~AirchecksTabView() override;

    /// Shows what the schedule has written to the cards by itself; costs next to nothing.
    void refresh();

    /// Makes the views of all cards anew, after a change of their number.
    void refreshAirchecksStack();

    /// From the top, one for each card of the schedule.
    const std::vector<ScheduledAircheckCardView*>& cardViews() const { return cardViews_; }

    CardsScrollView& airchecksScrollView() { return *scrollView_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    void addCardView(std::size_t index);
    void takeTitles();
    void cardChanged(std::size_t index, ScheduledAircheckCard card);
    void addCardBelow(std::size_t index);
    void removeCard(std::size_t index);
    bool hasKeyboard() const;
    std::vector<ScheduledAircheckCard>& cards() { return schedule_.scheduledAirchecks(); }

    AircheckSchedule& schedule_;
    CardsScrollView* scrollView_;
    std::vector<ScheduledAircheckCardView*> cardViews_;
};

}  // namespace sonavault
