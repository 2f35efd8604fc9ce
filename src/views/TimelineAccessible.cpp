#include "views/TimelineAccessible.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "views/LanesInnerView.h"

namespace sonavault {

namespace {

class TimelineAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit TimelineAccessible(LanesInnerView& timeline)
        : QAccessibleWidget(&timeline, QAccessible::Slider), timeline_(timeline) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Value) return timeline_.playheadReadout();
        return QAccessibleWidget::text(which);
    }

    // Units: seconds of the day
    QVariant currentValue() const override { return timeline_.host().playheadSec().value; }
    void setCurrentValue(const QVariant& value) override {
        timeline_.host().jumpTo({value.toDouble()});
    }
    QVariant minimumValue() const override { return 0.0; }
    QVariant maximumValue() const override { return kSecondsInDay; }
    QVariant minimumStepSize() const override { return 1.0; }

  private:
    LanesInnerView& timeline_;
};

/// Knows from Qt when a screen reader comes and goes.
class ScreenReaders final : public QAccessible::ActivationObserver {
  public:
    ScreenReaders() : listen_(QAccessible::isActive()) {
        QAccessible::installActivationObserver(this);
    }
    ~ScreenReaders() override { QAccessible::removeActivationObserver(this); }
    ScreenReaders(const ScreenReaders&) = delete;
    ScreenReaders& operator=(const ScreenReaders&) = delete;

    bool listen() const { return listen_; }

  protected:
    void accessibilityActiveChanged(bool active) override { listen_ = active; }

  private:
    bool listen_;
};

const ScreenReaders& screenReaders() {
    static const ScreenReaders readers;
    return readers;
}

QAccessibleInterface* makeTimelineAccessible(const QString&, QObject* object) {
    auto* timeline = dynamic_cast<LanesInnerView*>(object);
    return timeline ? new TimelineAccessible(*timeline) : nullptr;
}

}  // namespace

void installTimelineAccessible() {
    static const bool installed = [] {
        QAccessible::installFactory(makeTimelineAccessible);
        screenReaders();
        return true;
    }();
    static_cast<void>(installed);
}

bool screenReaderListens() {
    return screenReaders().listen();
}

void tellTimelineValue(LanesInnerView& timeline) {
    QAccessibleValueChangeEvent event(&timeline, timeline.host().playheadSec().value);
    QAccessible::updateAccessibility(&event);
}

}  // namespace sonavault
