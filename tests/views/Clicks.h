#pragma once

#include <QTest>
#include <QWidget>

namespace sonavault::testing {

/// The view of that name and kind within `parent`; a test without it cannot go on.
template <class View>
View& viewNamed(QWidget& parent, const char* name) {
    auto* found = dynamic_cast<View*>(parent.findChild<QWidget*>(QString::fromUtf8(name)));
    if (found == nullptr) qFatal("There is no view named %s.", name);
    return *found;
}

inline void click(QWidget& view) {
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, view.rect().center());
}

/// The colour of one pixel of what the view shows.
inline QColor pixelOf(QWidget& view, int x, int y) {
    return view.grab().toImage().pixelColor(x, y);
}

}  // namespace sonavault::testing
