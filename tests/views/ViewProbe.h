#pragma once

#include <QAbstractButton>
#include <QImage>
#include <QWidget>
#include <vector>

namespace sonavault::testing {

/// The view of that name inside `parent`; null if there is none.
template <class View = QWidget>
View* named(const QWidget& parent, const char* name) {
    return dynamic_cast<View*>(parent.findChild<QWidget*>(QLatin1String(name)));
}

/// All views of that kind inside `parent`. QObject::findChildren() takes any widget for one of a
/// kind that Qt's own type information does not know.
template <class View>
std::vector<View*> allOf(const QWidget& parent,
                         Qt::FindChildOptions depth = Qt::FindChildrenRecursively) {
    std::vector<View*> found;
    for (QWidget* each : parent.findChildren<QWidget*>(QString(), depth))
        if (auto* view = dynamic_cast<View*>(each)) found.push_back(view);
    return found;
}

/// What `view` shows, a pixel for each point.
inline QImage picture(QWidget& view) {
    return view.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace sonavault::testing
