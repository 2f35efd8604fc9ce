#include "views/HintFinder.h"

#include <QObjectList>

#include "views/Hints.h"

namespace sonavault {
namespace {

QString hintOf(const QWidget& view, QPoint point) {
    const auto* places = dynamic_cast<const HintedPlaces*>(&view);
    const QString text = places ? places->hintAt(point) : QString();
    return text.isEmpty() ? svHint(view) : text;
}

}  // namespace

HintedView findHinted(QPoint point, const QWidget& view) {
    if (view.isHidden() || !view.rect().contains(point)) return {};
    const QObjectList& children = view.children();
    for (auto child = children.crbegin(); child != children.crend(); ++child) {
        const auto* widget = qobject_cast<const QWidget*>(*child);
        // A dialog of this view is a child too, but stands elsewhere.
        if (!widget || widget->isWindow()) continue;
        if (HintedView found = findHinted(widget->mapFromParent(point), *widget); found.view) {
            return found;
        }
    }
    const QString text = hintOf(view, point);
    return text.isEmpty() ? HintedView{} : HintedView{&view, text};
}

}  // namespace sonavault
