#include "system/SentMarkers.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace sonavault::testing {

namespace {

// Written out here once more, so that a log is not compared with the writer's own idea of it.
std::string asField(const std::string& text) {
    if (text.find_first_of(",\"\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

}  // namespace

std::string rowOf(const std::string& message) {
    const auto json = QJsonDocument::fromJson(QByteArray::fromStdString(message)).object();
    const auto text = [&](const char* key) {
        return json[QLatin1String(key)].toString().toStdString();
    };
    char duration[32];
    std::snprintf(duration, sizeof duration, "%g", json["duration_sec"].toDouble());
    return text("clock_time") + "," + text("type") + "," + asField(text("label")) + "," + duration +
           "\n";
}

std::vector<std::string> sentRows(const ChildProcess& automation) {
    const std::string said = "automation: marker sent: ";
    std::vector<std::string> rows;
    for (const auto& line : automation.lines())
        if (line.text.starts_with(said)) rows.push_back(rowOf(line.text.substr(said.size())));
    return rows;
}

std::string logOf(const std::vector<std::string>& rows) {
    std::string log = kLogHeader;
    for (const auto& row : rows) log += row;
    return log;
}

}  // namespace sonavault::testing
