#include "views/Hints.h"

#include <QVariant>

namespace sonavault {
namespace {

constexpr auto kProperty = "svHint";

}  // namespace

void setSvHint(QWidget& view, const QString& text) {
    view.setProperty(kProperty, text);
    view.setAccessibleDescription(text);
}

QString svHint(const QWidget& view) {
    return view.property(kProperty).toString();
}

}  // namespace sonavault
