#include <QJsonDocument>
#include <cstdint>
#include <string>
#include <string_view>

#include "Check.h"
#include "shell/ForeignText.h"
#include "shell/PlaybackEvent.h"

namespace {

using sonavault::PlaybackEvent;

using sonavault::testing::check;

bool isUtf8(const std::string& text) {
    return QString::fromStdString(text).toStdString() == text;
}

void checkLine(const std::string& line) {
    check(sonavault::printable(line).find_first_of("\n\r\x1b") == std::string::npos);
}

void checkClockTime(const std::string& text) {
    const auto time = sonavault::hmsClockTimeFromIso(text);
    if (!time) return;
    check(time->size() == 8 && (*time)[2] == ':' && (*time)[5] == ':');
    check(*time < "24:00:00" && time->substr(3, 2) < "60" && time->substr(6) < "60");
}

void checkEvent(const QJsonObject& payload) {
    const auto event = PlaybackEvent::from(payload);
    if (!event) {
        check(!payload["playbackState"].isString() && !payload["state"].isString());
        const std::string line = sonavault::missingStateLine(payload);
        check(line.find_first_of("\n\r\x1b") == std::string::npos);
        return check(line.size() < 2 * sonavault::kMostBytesOfForeignText + 200);
    }
    check(!event->markerType.empty() && event->markerLabel.rfind("Cadenzo ", 0) == 0);
    check(event->markerLabel.size() <= sonavault::kMostBytesOfForeignText);
    check(isUtf8(event->markerLabel));
    checkLine(event->state);
    checkLine(event->cause);
    if (event->at) checkClockTime(*event->at);
}

}  // namespace

/// The payload of a playback event; what is no JSON is taken for the text of a time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const auto json = QJsonDocument::fromJson(QByteArray::fromStdString(input));
    if (json.isObject()) checkEvent(json.object());
    checkClockTime(input);
    checkLine(input);
    return 0;
}
