#include "views/DateRowView.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include "views/DateListView.h"
#include "views/Painting.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr double kWarningSign = 13;  // across
constexpr double kWarningSignToText = 4;
constexpr QColor kColorWarningText{197, 120, 32};
constexpr double kFocusInset = 1.5;

/// The face and colour of a line.
struct Look {
    QFont font;
    QColor colour;
};

Look italic(Look look) {
    look.font.setItalic(true);
    return look;
}

const Look& lookOf(DateRowPart part) {
    static const Look kTitle{interfaceFont(15, QFont::DemiBold), kColorTitle};
    static const Look kToday{interfaceFont(11, QFont::Bold), whiteLevel(0.45)};
    static const Look kMeta{interfaceFont(13), whiteLevel(0.4)};
    static const Look kWarning{interfaceFont(13, QFont::Medium), kColorWarningText};
    static const Look kExpiry = italic({interfaceFont(12), whiteLevel(0.55)});
    switch (part) {
        case DateRowPart::title:
            return kTitle;
        case DateRowPart::today:
            return kToday;
        case DateRowPart::meta:
            return kMeta;
        case DateRowPart::warning:
            return kWarning;
        case DateRowPart::expiry:
            return kExpiry;
    }
    return kMeta;
}

/// A triangle with an exclamation mark, which few faces have a glyph for.
void drawWarningSign(QPainter& painter, const QRectF& box, const QColor& colour) {
    const double middle = box.center().x();
    QPainterPath sign;
    sign.setFillRule(Qt::OddEvenFill);
    sign.addPolygon(QPolygonF({{middle, box.top()}, box.bottomRight(), box.bottomLeft()}));
    sign.closeSubpath();
    const double unit = box.height() / 11;
    sign.addRect(QRectF(middle - 0.75 * unit, box.top() + 4 * unit, 1.5 * unit, 3.6 * unit));
    sign.addRect(QRectF(middle - 0.75 * unit, box.top() + 8.4 * unit, 1.5 * unit, 1.4 * unit));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPath(sign);
}

/// The same on every desktop, as all of the window.
QPalette menuPalette() {
    QPalette palette(kColorPanelBG);
    palette.setColor(QPalette::WindowText, kColorTitle);
    palette.setColor(QPalette::Text, kColorTitle);
    palette.setColor(QPalette::ButtonText, kColorTitle);
    palette.setColor(QPalette::Highlight, toQColor(kColorDateSelected));
    palette.setColor(QPalette::HighlightedText, kColorTitle);
    return palette;
}

}  // namespace

DateRowView::DateRowView(const DailyRecording& recording, DateListHost& host, QWidget* parent)
    : QWidget(parent),
      host_(host),
      recording_(recording),
      look_(dateRowLook(recording)),
      indicator_(dateIndicator(recording, host.isRecording())) {
    setFocusPolicy(Qt::TabFocus);  // a click leaves the keys to the timeline
    setAccessibleName(toQString(dateRowSentence(recording)));
    if (!recording_.live) return;
    cluster_ = new RecordingClusterView(host, this);
    cluster_->setGeometry(toQRect(kRecordingCluster));
}

int DateRowView::rowHeight() const {
    return qRound(look_.height);
}

void DateRowView::setSelected(bool selected) {
    if (selected == isSelected_) return;
    isSelected_ = selected;
    update();
}

void DateRowView::updateLive(const DailyRecording& recording) {
    recording_ = recording;
    for (DateRowText& each : look_.texts)
        if (each.part == DateRowPart::meta) each.text = dateRowMeta(recording);
    setAccessibleName(toQString(dateRowSentence(recording)));
    update();
}

void DateRowView::updateRecordingIndicator() {
    const DateIndicator indicator = dateIndicator(recording_, host_.isRecording());
    if (indicator == indicator_) return;
    indicator_ = indicator;
    update(toQRect(kDateIndicator));
}

void DateRowView::updateLevels() {
    if (cluster_) cluster_->updateLevels();
}

QMenu* DateRowView::makeMenu(QWidget* parent) const {
    auto* menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setPalette(menuPalette());
    menu->setFont(interfaceFont(13));
    DateListHost* host = &host_;
    if (recording_.live) {
        menu->addAction(toQString(toggleRecordingTitle(host->isRecording())), menu,
                        [host] { host->toggleRecordingFromMenu(); });
        menu->addSeparator();
    }
    menu->addAction(toQString(deleteRecordingTitle(recording_)), menu,
                    [host, recording = recording_] { host->deleteRecording(recording); });
    return menu;
}

void DateRowView::activate() {
    // Copies: the list may be rebuilt before the call returns.
    const auto clicked = onClicked;
    const std::string date = recording_.date;
    if (clicked) clicked(date);
}

void DateRowView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) activate();
}

void DateRowView::contextMenuEvent(QContextMenuEvent* event) {
    if (onMenuRequested) onMenuRequested(event->globalPos());
}

void DateRowView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        activate();
    else
        QWidget::keyPressEvent(event);
}

void DateRowView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (isSelected_) painter.fillRect(rect(), toQColor(kColorDateSelected));
    painter.setRenderHint(QPainter::Antialiasing);
    drawIndicator(painter);
    for (const DateRowText& each : look_.texts) drawText(painter, each);
    if (hasFocus()) drawFocus(painter);
    painter.setRenderHint(QPainter::Antialiasing, false);
    drawRules(painter);
}

void DateRowView::drawIndicator(QPainter& painter) const {
    const QRectF circle = toQRectF(kDateIndicator);
    if (indicator_ == DateIndicator::none) {
        painter.setPen(QPen(whiteLevel(0.7), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(circle.adjusted(0.5, 0.5, -0.5, -0.5));
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(
        toQColor(indicator_ == DateIndicator::recording ? kColorRec : kColorDateWarning));
    painter.drawEllipse(circle);
}

void DateRowView::drawText(QPainter& painter, const DateRowText& text) const {
    const Look& look = lookOf(text.part);
    QRectF box = toQRectF(text.box);
    QString shown = toQString(text.text);
    if (text.part == DateRowPart::warning) {
        const double size = kWarningSign - 2;
        drawWarningSign(painter, {box.left(), box.center().y() - size / 2, kWarningSign, size},
                        look.colour);
        box.setLeft(box.left() + kWarningSign + kWarningSignToText);
        shown.remove(0, 2);  // the sign and the blank after it
    }
    painter.setFont(look.font);
    painter.setPen(look.colour);
    shown = painter.fontMetrics().elidedText(shown, Qt::ElideRight, qRound(box.width()));
    painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
}

void DateRowView::drawFocus(QPainter& painter) const {
    const QRectF frame =
        QRectF(rect()).adjusted(kFocusInset, kFocusInset + 2, -kFocusInset, -kFocusInset - 1);
    painter.setPen(QPen(toQColor(kColorLEDLow), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(frame, 4, 4);
}

void DateRowView::drawRules(QPainter& painter) const {
    painter.fillRect(QRect(0, height() - 1, width(), 1), toQColor(kColorDateListSep));
    const double done = dayProgressWidth(recording_, width());
    if (done > 0)
        painter.fillRect(QRectF(0, 0, done, kDayProgressHeight), toQColor(kColorDayProgress));
}

}  // namespace sonavault
