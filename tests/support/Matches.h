#pragma once

#include <QRegularExpression>
#include <string>
#include <vector>

namespace sonavault::testing {

/// What the first group of `pattern` matches in the text, one place after the other.
inline std::vector<std::string> matchesIn(const std::string& text, const QString& pattern) {
    std::vector<std::string> all;
    auto each = QRegularExpression(pattern).globalMatch(QString::fromStdString(text));
    while (each.hasNext()) all.push_back(each.next().captured(1).toStdString());
    return all;
}

}  // namespace sonavault::testing
