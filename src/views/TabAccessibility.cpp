#include "views/TabAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "views/SVTabBarView.h"
#include "views/SVTabHotspotView.h"

namespace sonavault {
namespace {

class AccessibleTab final : public QAccessibleWidget {
  public:
    explicit AccessibleTab(SVTabHotspotView* view)
        : QAccessibleWidget(view, QAccessible::PageTab), view_(view) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = bar() && bar()->selectedTabId() == view_->id();
        return state;
    }

    QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString& action) override {
        if (action != pressAction() || !bar()) return;
        // A choice makes all tabs anew, and with them this object.
        QMetaObject::invokeMethod(
            bar(), [bar = bar(), id = view_->id()] { bar->choose(id); }, Qt::QueuedConnection);
    }

  private:
    SVTabBarView* bar() const { return dynamic_cast<SVTabBarView*>(view_->parentWidget()); }

    SVTabHotspotView* view_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* tab = dynamic_cast<SVTabHotspotView*>(object)) return new AccessibleTab(tab);
    if (auto* bar = dynamic_cast<SVTabBarView*>(object)) {
        return new QAccessibleWidget(bar, QAccessible::PageTabList);
    }
    return nullptr;
}

}  // namespace

void installTabAccessibility() {
    // Qt keeps each factory once, however often it is given.
    QAccessible::installFactory(makeInterface);
}

}  // namespace sonavault
