#include "views/TransportView.h"

#include <cmath>
#include <utility>

#include "review/LogsTabLayout.h"
#include "views/BarGround.h"
#include "views/ElidedTextView.h"
#include "views/FlatButton.h"
#include "views/Hints.h"
#include "views/Painting.h"
#include "views/RoundButton.h"
#include "views/TextView.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr std::string_view kPauseTitle = "⏸";

// The place of the primary button in the shuttle.
constexpr std::size_t kPlay = 1;

QFont nowPlayingFont() {
    QFont font = interfaceFont(14);
    font.setItalic(true);
    return font;
}

double wholeWidth(const QLabel& label) {
    return std::ceil(QFontMetricsF(label.font()).horizontalAdvance(label.text()));
}

}  // namespace

TransportView::TransportView(TransportActions actions, QWidget* parent)
    : QWidget(parent), actions_(std::move(actions)) {
    transportTimeLabel_ = new TextView(QStringLiteral("00:00:00"), digitsFont(24, QFont::DemiBold),
                                       kColorTitle, this);
    transportTimeLabel_->setObjectName(QStringLiteral("transportTimeLabel"));
    transportTimeLabel_->setAlignment(Qt::AlignCenter);
    setSvHint(*transportTimeLabel_,
              QStringLiteral("Playhead position — time of day at the scrub line."));
    makeShuttle();
    makeTexts();
    makeExportButton();
}

RoundButton* TransportView::makeRoundButton(const QString& symbol, const QString& name,
                                            Action action, bool primary) {
    auto* button = new RoundButton(symbol, name, primary, this);
    connect(button, &QAbstractButton::clicked, this, [this, action] { run(action); });
    return button;
}

void TransportView::run(Action action) {
    if (actions_.*action) (actions_.*action)();
}

void TransportView::makeShuttle() {
    struct Described {
        const char* identifier;
        const char* symbol;
        const char* name;
        const char* hint;
        Action action;
    };
    const std::array<Described, 5> described{{
        {"shuttle-prev", "⏮", "Previous marker", "Jump to the previous marker on the timeline.",
         &TransportActions::prevMarkerClicked},
        {"shuttle-play", "▶", "Play", "Start or stop playback from the scrub line.",
         &TransportActions::playButtonClicked},
        {"shuttle-next", "⏭", "Next marker", "Jump to the next marker on the timeline.",
         &TransportActions::nextMarkerClicked},
        {"shuttle-in", "[", "Selection start", "Mark the start of a new selection at the playhead.",
         &TransportActions::inPointClicked},
        {"shuttle-out", "]", "Selection end", "Mark the end of the current selection.",
         &TransportActions::outPointClicked},
    }};
    for (std::size_t i = 0; i < described.size(); ++i) {
        const Described& each = described.at(i);
        RoundButton* button =
            makeRoundButton(toQString(each.symbol), toQString(each.name), each.action, i == kPlay);
        button->setObjectName(toQString(each.identifier));
        setSvHint(*button, toQString(each.hint));
        shuttle_.at(i) = button;
    }
}

void TransportView::makeTexts() {
    nowPlayingLabel_ = new ElidedTextView(nowPlayingFont(), whiteLevel(0.35), Qt::AlignLeft, this);
    nowPlayingLabel_->showText(QStringLiteral("Now playing: —"));
    nowPlayingLabel_->setObjectName(QStringLiteral("nowPlayingLabel"));
    setSvHint(*nowPlayingLabel_,
              QStringLiteral("Label of the marker the playhead is currently inside."));
    selectionInfoLabel_ =
        new ElidedTextView(digitsFont(13), whiteLevel(0.35), Qt::AlignRight, this);
    selectionInfoLabel_->showText(QStringLiteral("Selections: —"));
    selectionInfoLabel_->setObjectName(QStringLiteral("selectionInfoLabel"));
    setSvHint(*selectionInfoLabel_, QStringLiteral("Number of selections marked on this day."));
}

// Never shown: the button over the timeline does its work. Whoever asks it finds whether there is
// anything to export.
void TransportView::makeExportButton() {
    exportButton_ = new FlatButton(QStringLiteral("Export Selected"), interfaceFont(13), this);
    exportButton_->setObjectName(QStringLiteral("exportButton"));
    exportButton_->setEnabled(false);
    exportButton_->hide();
    connect(exportButton_, &QAbstractButton::clicked, this,
            [this] { run(&TransportActions::exportClicked); });
}

void TransportView::setTransportTime(const std::string& text) {
    transportTimeLabel_->showText(toQString(text));
}

void TransportView::setNowPlaying(const std::string& text) {
    nowPlayingLabel_->showText(toQString(text));
}

void TransportView::showSelectionInfo(const std::string& text, bool canExport) {
    exportButton_->setEnabled(canExport);
    const QString shown = toQString(text);
    if (shown == selectionInfoLabel_->text()) return;
    selectionInfoLabel_->showText(shown);
    layOut();
}

void TransportView::setPlayButtonTitle(const std::string& title) {
    const QString name = title == kPauseTitle ? QStringLiteral("Pause") : QStringLiteral("Play");
    shuttle_.at(kPlay)->showSymbol(toQString(title), name);
}

void TransportView::layOut() {
    const TransportFrames frames = transportFrames(width(), wholeWidth(*selectionInfoLabel_));
    place(*transportTimeLabel_, toQRect(frames.transportTimeLabel));
    for (std::size_t i = 0; i < shuttle_.size(); ++i)
        place(*shuttle_.at(i), toQRect(frames.shuttle.at(i)));
    place(*nowPlayingLabel_, toQRect(frames.nowPlayingLabel));
    place(*selectionInfoLabel_, toQRect(frames.selectionInfoLabel));
}

void TransportView::resizeEvent(QResizeEvent*) {
    layOut();
}

void TransportView::paintEvent(QPaintEvent*) {
    paintBarGround(*this, whiteLevel(0.85));
}

}  // namespace sonavault
