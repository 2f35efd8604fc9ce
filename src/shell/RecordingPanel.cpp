#include "shell/RecordingPanel.h"

#include <QGridLayout>
#include <QKeySequence>
#include <QPainter>
#include <QVBoxLayout>

#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr QSize kSize{440, 330};
constexpr int kMargin = 36;
constexpr double kCorner = 8;

QString hint() {
    return QKeySequence(Qt::CTRL | Qt::Key_R).toString(QKeySequence::NativeText) +
           QStringLiteral(" starts and stops recording");
}

}  // namespace

RecordingPanel::RecordingPanel(QWidget* parent)
    : QWidget(parent),
      dot_(new DotView(12, whiteLevel(0.65), this)),
      state_(new TextView({}, interfaceFont(18, QFont::DemiBold), kColorTitle, this)),
      duration_(new TextView({}, digitsFont(64, QFont::DemiBold), kColorTitle, this)),
      caption_(new TextView({}, interfaceFont(14), kColorSlogan, this)) {
    setFixedSize(kSize);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin - 4, kMargin, kMargin - 4);
    column->setSpacing(0);

    auto* heading = new QHBoxLayout;
    heading->setSpacing(10);
    heading->addWidget(dot_);
    heading->addWidget(state_, 1);
    column->addLayout(heading);
    column->addSpacing(4);
    column->addWidget(duration_);
    column->addWidget(caption_);
    column->addStretch();

    auto* rows = new QGridLayout;
    rows->setHorizontalSpacing(16);
    rows->setVerticalSpacing(8);
    rows->setColumnStretch(1, 1);
    source_ = addRow(*rows, QStringLiteral("Source"));
    level_ = addRow(*rows, QStringLiteral("Input level"));
    column->addLayout(rows);
    column->addStretch();
    column->addWidget(new TextView(hint(), interfaceFont(13), kColorSlogan, this));
    show({});
}

TextView* RecordingPanel::addRow(QGridLayout& rows, const QString& title) {
    const int row = rows.rowCount();
    rows.addWidget(new TextView(title, interfaceFont(14), kColorSlogan, this), row, 0);
    auto* value = new TextView({}, interfaceFont(14, QFont::Medium), kColorTitle, this);
    rows.addWidget(value, row, 1);
    return value;
}

void RecordingPanel::show(const RecordingStatus& status) {
    dot_->setColour(recordingStateColour(status));
    state_->showText(recordingStateText(status));
    duration_->showText(recordingDurationText(status));
    duration_->setColour(status.isRecording ? kColorTitle : whiteLevel(0.65));
    caption_->showText(recordingDurationCaption(status));
    source_->showText(sonavault::sourceText(status));
    level_->showText(sonavault::inputLevelText(status));
}

void RecordingPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(kColorPanelBG);
    painter.setPen(kColorPanelStroke);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCorner, kCorner);
}

}  // namespace sonavault
