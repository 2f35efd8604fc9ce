#include "automation/StationMarker.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "platform/Format.h"
#include "platform/LocalTime.h"

namespace sonavault::automation {

namespace {

std::string clockText(WallTime moment) {
    const LocalTime time = localTime(moment);
    return zeroPadded(time.hour, 2) + ":" + zeroPadded(time.minute, 2) + ":" +
           zeroPadded(time.second, 2);
}

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

}  // namespace

std::string markerPayload(const StationMarker& marker, WallTime event, WallTime emission) {
    QJsonObject message;
    message["type"] = text(marker.type);
    message["clock_time"] = text(marker.clockTime.empty() ? clockText(event) : marker.clockTime);
    message["wall_clock_iso8601"] = text(iso8601WithMilliseconds(emission));
    if (!marker.label.empty()) message["label"] = text(marker.label);
    if (marker.durationSec) message["duration_sec"] = *marker.durationSec;
    if (!marker.file.empty()) message["file"] = text(marker.file);
    if (marker.testMode) message["test_mode"] = true;
    return QJsonDocument(message).toJson(QJsonDocument::Compact).toStdString();
}

std::vector<std::uint8_t> markerFrame(std::span<const char> payload, bool bigEndian) {
    const auto length = static_cast<std::uint32_t>(payload.size());
    std::vector<std::uint8_t> frame;
    frame.reserve(4 + payload.size());
    for (int i = 0; i < 4; ++i)
        frame.push_back(static_cast<std::uint8_t>(length >> (bigEndian ? 24 - 8 * i : 8 * i)));
    frame.insert(frame.end(), payload.begin(), payload.end());
    return frame;
}

}  // namespace sonavault::automation
