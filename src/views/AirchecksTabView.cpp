#include "views/AirchecksTabView.h"

#include <QApplication>
#include <QMouseEvent>
#include <algorithm>

#include "views/ControlColours.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr QColor kColorAirchecksBG{224, 224, 229};
constexpr int kSide = 12;
constexpr int kHead = 80;
constexpr int kCardInset = 18;
constexpr int kCardGap = 18;

}  // namespace

AirchecksTabView::AirchecksTabView(AircheckSchedule& schedule, QWidget* parent)
    : QWidget(parent), schedule_(schedule) {
    QPalette colours = palette();
    colours.setColor(QPalette::Window, kColorAirchecksBG);
    setPalette(colours);
    setAutoFillBackground(true);

    auto* title = new TextView(QStringLiteral("Scheduled Airchecks"),
                               interfaceFont(23, QFont::DemiBold), kColorLabel, this);
    title->setGeometry(16, 12, 400, 32);
    auto* line = new TextView(QStringLiteral("Cards run automatically at the end of each scheduled "
                                             "window. Output: ~/%1/")
                                  .arg(QLatin1String(kAirchecksFolderPathSegment)),
                              interfaceFont(15), kColorSecondaryLabel, this);
    line->setGeometry(16, 46, 700, 22);
    scrollView_ = new CardsScrollView(this);

    cards() = schedule_.loadScheduledAirchecks();
    if (cards().empty()) cards().push_back(ScheduledAircheckCard::newDraft());
    refreshAirchecksStack();
}

// Closing, the text field that has the keyboard is left; nobody is there any more to hear of it.
AirchecksTabView::~AirchecksTabView() {
    for (auto* view : cardViews_) view->onChange = nullptr;
}

void AirchecksTabView::refresh() {
    if (cardViews_.size() != cards().size()) {
        refreshAirchecksStack();
        return;
    }
    for (std::size_t i = 0; i < cardViews_.size(); ++i)
        cardViews_[i]->showLastRun(cards()[i].lastRunDate);
}

void AirchecksTabView::refreshAirchecksStack() {
    // One of the old views may be in the midst of a click, so they go once that is over.
    for (auto* view : cardViews_) {
        view->onChange = nullptr;
        view->hide();
        view->deleteLater();
    }
    cardViews_.clear();
    for (std::size_t i = 0; i < cards().size(); ++i) addCardView(i);
    const int step = ScheduledAircheckCardView::kSize.height() + kCardGap;
    scrollView_->setCardsHeight(kCardInset + step * static_cast<int>(cards().size()));
}

void AirchecksTabView::addCardView(std::size_t index) {
    auto* view = new ScheduledAircheckCardView(cards()[index], scrollView_->widget());
    const int step = ScheduledAircheckCardView::kSize.height() + kCardGap;
    view->move(kCardInset, kCardInset + step * static_cast<int>(index));
    view->onChange = [this, index](const ScheduledAircheckCard& card) { cardChanged(index, card); };
    view->onAddBelow = [this, index] { addCardBelow(index); };
    view->onRemove = [this, index] { removeCard(index); };
    view->show();
    cardViews_.push_back(view);
}

void AirchecksTabView::cardChanged(std::size_t index, ScheduledAircheckCard card) {
    if (index >= cards().size()) return;
    // The view's copy may be older than the card's last run, which must not be forgotten: it is all
    // that keeps the card from running twice a day.
    card.lastRunDate = cards()[index].lastRunDate;
    cards()[index] = std::move(card);
    schedule_.saveScheduledAirchecks();
}

void AirchecksTabView::addCardBelow(std::size_t index) {
    takeTitles();
    const bool takesKeyboard = hasKeyboard();
    const std::size_t place = std::min(index + 1, cards().size());
    cards().insert(cards().begin() + static_cast<std::ptrdiff_t>(place),
                   ScheduledAircheckCard::newDraft());
    schedule_.saveScheduledAirchecks();
    refreshAirchecksStack();
    scrollView_->ensureWidgetVisible(cardViews_[place], 0, kCardGap);
    if (takesKeyboard) cardViews_[place]->titleField->setFocus(Qt::TabFocusReason);
}

void AirchecksTabView::removeCard(std::size_t index) {
    if (index >= cards().size()) return;
    takeTitles();
    const bool takesKeyboard = hasKeyboard();
    if (cards().size() == 1)
        cards()[0] = ScheduledAircheckCard::newDraft();
    else
        cards().erase(cards().begin() + static_cast<std::ptrdiff_t>(index));
    schedule_.saveScheduledAirchecks();
    refreshAirchecksStack();
    const std::size_t next = std::min(index, cards().size() - 1);
    if (takesKeyboard) cardViews_[next]->removeBtn->setFocus(Qt::TabFocusReason);
}

// Whoever is at work in the tab stays there when the cards are made anew.
bool AirchecksTabView::hasKeyboard() const {
    const QWidget* focused = QApplication::focusWidget();
    return focused && isAncestorOf(focused);
}

void AirchecksTabView::takeTitles() {
    for (auto* view : cardViews_) view->takeTitle();
}

void AirchecksTabView::resizeEvent(QResizeEvent*) {
    scrollView_->setGeometry(kSide, kHead, std::max(0, width() - 2 * kSide),
                             std::max(0, height() - kHead));
}

void AirchecksTabView::showEvent(QShowEvent* event) {
    refresh();
    QWidget::showEvent(event);
}

// The window may be about to close, which ends the program.
void AirchecksTabView::hideEvent(QHideEvent* event) {
    takeTitles();
    QWidget::hideEvent(event);
}

// A click beside the controls leaves the text field.
void AirchecksTabView::mousePressEvent(QMouseEvent* event) {
    if (hasKeyboard()) QApplication::focusWidget()->clearFocus();
    event->accept();
}

}  // namespace sonavault
