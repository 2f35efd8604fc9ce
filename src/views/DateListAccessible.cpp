#include "views/DateListAccessible.h"

#include <QAccessibleWidget>

#include "views/DateRowView.h"

namespace sonavault {
namespace {

class DateRowAccessible final : public QAccessibleWidget {
  public:
    explicit DateRowAccessible(DateRowView* row) : QAccessibleWidget(row, QAccessible::ListItem) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = row().isSelected();
        return state;
    }

    QStringList actionNames() const override {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override {
        if (name == pressAction())
            row().activate();
        else
            QAccessibleWidget::doAction(name);
    }

  private:
    DateRowView& row() const { return *static_cast<DateRowView*>(widget()); }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* row = dynamic_cast<DateRowView*>(object)) return new DateRowAccessible(row);
    if (auto* rows = dynamic_cast<DateRowsView*>(object))
        return new QAccessibleWidget(rows, QAccessible::List);
    return nullptr;
}

}  // namespace

DateRowsView::DateRowsView(QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Daily recordings"));
}

void installDateListAccessibility() {
    QAccessible::installFactory(makeInterface);
}

}  // namespace sonavault
