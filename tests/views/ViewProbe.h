#pragma once

#include <QAbstractButton>
#include <QImage>
#include <QWidget>

namespace sonavault::testing {

/// The view of that name inside `parent`; null if there is none.
template <class View = QWidget>
View* named(const QWidget& parent, const char* name) {
    return dynamic_cast<View*>(parent.findChild<QWidget*>(QLatin1String(name)));
}

/// What `view` shows, a pixel for each point.
inline QImage picture(QWidget& view) {
    return view.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace sonavault::testing
