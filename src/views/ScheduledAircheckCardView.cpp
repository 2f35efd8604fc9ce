#include "views/ScheduledAircheckCardView.h"

#include <QPainter>

#include "export/AircheckCardEditing.h"
#include "views/ControlColours.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr double kCornerRadius = 8;
constexpr double kBorderWhite = 0.85;

// The card is laid out from its lower left corner.
QRect fromBottom(int x, int y, int width, int height) {
    return {x, ScheduledAircheckCardView::kSize.height() - y - height, width, height};
}

template <typename View>
View* placed(View* view, const QRect& frame, const QString& hint) {
    view->setGeometry(frame);
    setSvHint(*view, hint);
    return view;
}

// The word at the left of a row.
void addHeading(const QString& text, const QRect& frame, const QString& hint, QWidget* parent) {
    placed(new TextView(text, interfaceFont(18, QFont::Medium), kColorSecondaryLabel, parent),
           frame, hint);
}

void addText(const QString& text, const QRect& frame, const QString& hint, QWidget* parent) {
    placed(new TextView(text, interfaceFont(16), kColorLabel, parent), frame, hint);
}

QStringList hourTitles() {
    QStringList titles;
    for (int hour = 0; hour < 24; ++hour) titles << toQString(hourTitle(hour));
    return titles;
}

}  // namespace

ScheduledAircheckCardView::ScheduledAircheckCardView(ScheduledAircheckCard card, QWidget* parent)
    : QWidget(parent), card_(std::move(card)) {
    setFixedSize(kSize);
    buildControls();
    updateControls();
}

// Going away, the text field is left once more.
ScheduledAircheckCardView::~ScheduledAircheckCardView() {
    titleField->disconnect(this);
}

// In the order of reading, which is also that of the Tab key.
void ScheduledAircheckCardView::buildControls() {
    buildTitle();
    buildDays();
    buildHours();
    buildMode();
    buildFoot();
}

void ScheduledAircheckCardView::buildTitle() {
    titleField =
        placed(new CardTextField(QStringLiteral("Aircheck name"),
                                 interfaceFont(21, QFont::DemiBold), this),
               fromBottom(18, 252, 360, 36),
               QStringLiteral("Name for this aircheck — also used in the saved filename."));
    connect(titleField, &QLineEdit::editingFinished, this, &ScheduledAircheckCardView::takeTitle);

    activeCheck =
        placed(new CardCheckBox(QStringLiteral("Active"), interfaceFont(18, QFont::Medium), this),
               fromBottom(435, 255, 120, 30),
               QStringLiteral("Turn this aircheck rule on or off. Off pauses without deleting."));
    connect(activeCheck, &QAbstractButton::clicked, this, [this](bool on) {
        card_.active = on;
        changed();
    });
}

void ScheduledAircheckCardView::buildDays() {
    addHeading(QStringLiteral("Days:"), fromBottom(18, 198, 66, 27),
               QStringLiteral("Which days of the week to capture this aircheck on."), this);
    constexpr std::array kDays{"Monday", "Tuesday",  "Wednesday", "Thursday",
                               "Friday", "Saturday", "Sunday"};
    for (std::size_t i = 0; i < kDays.size(); ++i) {
        const QString day = QString::fromLatin1(kDays.at(i));
        const int number = static_cast<int>(i) + 1;
        dayChecks.at(i) =
            placed(new CardCheckBox(day.left(1), interfaceFont(16, QFont::Medium), this),
                   fromBottom(90 + 57 * static_cast<int>(i), 198, 54, 30),
                   QStringLiteral("Capture this aircheck on %1.").arg(day));
        connect(dayChecks.at(i), &QAbstractButton::clicked, this,
                [this, number](bool on) { dayToggled(number, on); });
    }
}

void ScheduledAircheckCardView::buildHours() {
    const QString first = QStringLiteral("First hour of the aircheck window (inclusive).");
    const QString last = QStringLiteral("Last hour of the aircheck window (inclusive).");
    addHeading(QStringLiteral("Hours:"), fromBottom(18, 144, 66, 27),
               QStringLiteral("Start and end hours of the daypart to capture."), this);
    addText(QStringLiteral("Start"), fromBottom(90, 144, 60, 27), first, this);
    startHourPop = hourPop(fromBottom(150, 138, 114, 36), QStringLiteral("Start"), first);
    connect(startHourPop, &QComboBox::activated, this, [this](int hour) {
        card_.startHour = hour;
        changed();
    });
    addText(QStringLiteral("End"), fromBottom(282, 144, 48, 27), last, this);
    endHourPop = hourPop(fromBottom(330, 138, 114, 36), QStringLiteral("End"), last);
    connect(endHourPop, &QComboBox::activated, this, [this](int hour) {
        card_.endHour = hour;
        changed();
    });
}

CardPopUp* ScheduledAircheckCardView::hourPop(const QRect& frame, const QString& name,
                                              const QString& hint) {
    auto* pop = placed(new CardPopUp(hourTitles(), interfaceFont(16), this), frame, hint);
    pop->setAccessibleName(name);
    return pop;
}

void ScheduledAircheckCardView::buildMode() {
    addHeading(QStringLiteral("Mode:"), fromBottom(18, 90, 66, 27),
               QStringLiteral("Which marker spans to include in the saved MP3."), this);
    liveRadio = placed(new CardRadioButton(QStringLiteral("Live DJ"), interfaceFont(16), this),
                       fromBottom(90, 87, 135, 30),
                       QStringLiteral("Capture only the moments the live mic was open."));
    vtRadio = placed(new CardRadioButton(QStringLiteral("Voicetracks"), interfaceFont(16), this),
                     fromBottom(234, 87, 180, 30),
                     QStringLiteral("Capture only the pre-recorded voicetrack moments."));
    connect(liveRadio, &QAbstractButton::clicked, this, [this] { modeChanged("liveMic"); });
    connect(vtRadio, &QAbstractButton::clicked, this, [this] { modeChanged("voicetracked"); });
}

void ScheduledAircheckCardView::buildFoot() {
    lastRunLabel = placed(new TextView({}, interfaceFont(16), kColorTertiaryLabel, this),
                          fromBottom(18, 21, 390, 24),
                          QStringLiteral("Most recent date this aircheck was exported."));
    const QFont sign = interfaceFont(20, QFont::Bold);
    removeBtn = placed(new FlatButton(QStringLiteral("−"), sign, this), fromBottom(462, 15, 42, 42),
                       QStringLiteral("Remove this aircheck card."));
    addBtn = placed(new FlatButton(QStringLiteral("+"), sign, this), fromBottom(510, 15, 42, 42),
                    QStringLiteral("Add another aircheck card below this one."));
    connect(removeBtn, &QAbstractButton::clicked, this, [this] {
        if (onRemove) onRemove();
    });
    connect(addBtn, &QAbstractButton::clicked, this, [this] {
        takeTitle();
        if (onAddBelow) onAddBelow();
    });
}

void ScheduledAircheckCardView::updateControls() {
    titleField->setText(toQString(card_.label));
    activeCheck->setChecked(card_.active);
    for (std::size_t i = 0; i < dayChecks.size(); ++i)
        dayChecks.at(i)->setChecked(hasDay(card_, static_cast<int>(i) + 1));
    startHourPop->setCurrentIndex(shownHour(card_.startHour));
    endHourPop->setCurrentIndex(shownHour(card_.endHour));
    (card_.mode == "liveMic" ? liveRadio : vtRadio)->setChecked(true);
    lastRunLabel->showText(toQString(lastRunText(card_)));
}

void ScheduledAircheckCardView::showLastRun(const std::string& lastRunDate) {
    card_.lastRunDate = lastRunDate;
    lastRunLabel->showText(toQString(lastRunText(card_)));
}

void ScheduledAircheckCardView::takeTitle() {
    if (titleField->isModified()) changed();
}

// Clicks leave the keyboard in the text field, so that a name may have been typed and not yet taken
// when another control changes the card.
void ScheduledAircheckCardView::changed() {
    if (titleField->isModified()) {
        card_.label = titleField->text().toStdString();
        titleField->setModified(false);
    }
    if (onChange) onChange(card_);
}

void ScheduledAircheckCardView::dayToggled(int day, bool on) {
    card_.daysOfWeek = daysAfterToggle(std::move(card_.daysOfWeek), day, on);
    changed();
}

void ScheduledAircheckCardView::modeChanged(const std::string& mode) {
    card_.mode = mode;
    (mode == "liveMic" ? liveRadio : vtRadio)->setChecked(true);
    changed();
}

void ScheduledAircheckCardView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::white);
    painter.setPen(QPen(whiteLevel(kBorderWhite), 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius,
                            kCornerRadius);
}

}  // namespace sonavault
