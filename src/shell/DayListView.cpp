#include "shell/DayListView.h"

#include <QContextMenuEvent>
#include <QMenu>

#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr int kWidth = 360;

QString rowText(const DailyRecording& row) {
    const QString markers = row.markerCount == 1
                                ? QStringLiteral("1 marker")
                                : QStringLiteral("%1 markers").arg(row.markerCount);
    return QStringLiteral("%1  %2   %3   %4")
        .arg(QString::fromStdString(row.dayOfWeek), QString::fromStdString(row.date),
             QString::fromStdString(row.recorded), markers);
}

}  // namespace

DayListView::DayListView(QWidget* parent) : QListWidget(parent) {
    setAccessibleName(QStringLiteral("Recorded days"));
    setFixedWidth(kWidth);
    setFrameShape(QFrame::NoFrame);
    setFont(interfaceFont(14));
    setUniformItemSizes(true);
    setFocusPolicy(Qt::NoFocus);  // the content keeps the keys
    setStyleSheet(
        QStringLiteral("QListWidget { background: rgb(250,250,250); color: rgb(26,26,26); "
                       "padding: 8px; } QListWidget::item { padding: 6px; border: none; } "
                       "QListWidget::item:selected { background: rgb(199,201,204); "
                       "color: rgb(26,26,26); }"));
    connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        // A copy: what the choice leads to renders the list anew.
        const std::string date = rows_[static_cast<std::size_t>(row(item))].date;
        if (onDateChosen) onDateChosen(date);
    });
}

void DayListView::render(const std::vector<DailyRecording>& rows, const std::string& selectedDate) {
    rows_ = rows;
    clear();
    for (const auto& row : rows_) {
        auto* item = new QListWidgetItem(rowText(row), this);
        item->setSelected(row.date == selectedDate);
    }
}

void DayListView::updateRow(const DailyRecording& row) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (rows_[i].date != row.date) continue;
        rows_[i] = row;
        item(static_cast<int>(i))->setText(rowText(row));
    }
}

void DayListView::contextMenuEvent(QContextMenuEvent* event) {
    const QListWidgetItem* clicked = itemAt(viewport()->mapFrom(this, event->pos()));
    if (!clicked) return;
    const DailyRecording recording = rows_[static_cast<std::size_t>(row(clicked))];
    QMenu menu(this);
    menu.addAction(QStringLiteral("Delete…"), this, [this, recording] {
        if (onDeleteRequested) onDeleteRequested(recording);
    });
    menu.exec(event->globalPos());
}

}  // namespace sonavault
