#include "shell/PlaybackEvent.h"

#include <QJsonDocument>
#include <QStringList>
#include <array>
#include <utility>

#include "platform/Format.h"
#include "platform/LocalTime.h"
#include "shell/ForeignText.h"

namespace sonavault {

namespace {

constexpr auto kSeparator = " — ";
constexpr std::size_t kWholeSecondsLength = 19;  // "2026-05-08T14:03:07"

std::optional<std::string> textOf(const QJsonObject& payload, const char* key) {
    const QJsonValue value = payload.value(QLatin1String(key));
    if (!value.isString()) return std::nullopt;
    // No more than is shown of it; one further, so that half a character at the end is cut off too.
    constexpr auto kMost = static_cast<qsizetype>(kMostBytesOfForeignText) + 1;
    return value.toString().left(kMost).toStdString();
}

std::optional<std::string> secondsOf(const QJsonObject& payload, const char* key) {
    const QJsonValue value = payload.value(QLatin1String(key));
    if (!value.isDouble()) return std::nullopt;
    return fixedPoint(value.toDouble(), 1) + "s";
}

struct Meaning {
    const char* state;
    const char* markerType;
    const char* label;
};

constexpr std::array kMeanings{
    Meaning{"silence", "silence_start", "Cadenzo dead-air start"},
    Meaning{"recovered", "silence_end", "Cadenzo dead-air recovered"},
    Meaning{"paused", "cadenzo_pause", "Cadenzo paused"},
    Meaning{"playing", "cadenzo_resume", "Cadenzo resumed"},
    Meaning{"stopped", "cadenzo_stopped", "Cadenzo stopped"},
};

void interpret(PlaybackEvent& event) {
    event.markerType = "cadenzo_state";
    event.markerLabel = "Cadenzo " + event.state;
    for (const Meaning& meaning : kMeanings) {
        if (event.state != meaning.state) continue;
        event.markerType = meaning.markerType;
        event.markerLabel = meaning.label;
    }
}

}  // namespace

std::optional<PlaybackEvent> PlaybackEvent::from(const QJsonObject& payload) {
    auto state = textOf(payload, "playbackState");
    if (!state) state = textOf(payload, "state");
    if (!state) return std::nullopt;
    PlaybackEvent event;
    event.state = *state;
    event.cause = textOf(payload, "cause").value_or("");
    event.at = textOf(payload, "at");
    interpret(event);
    if (!event.cause.empty()) event.markerLabel += kSeparator + event.cause;
    auto duration = secondsOf(payload, "silenceDurationSec");
    if (!duration) duration = secondsOf(payload, "durationSec");
    if (duration) event.markerLabel += kSeparator + *duration;
    if (const auto resumeAt = textOf(payload, "resumeAt"))
        event.markerLabel += kSeparator + ("resumeAt=" + *resumeAt);
    event.markerLabel = shortened(std::move(event.markerLabel));
    return event;
}

std::string missingStateLine(const QJsonObject& payload) {
    // Qt keeps an object's keys sorted.
    return "Sonavault Switchboard: cadenzo.playback-state-changed missing state field; keys=[" +
           printable(payload.keys().join(QStringLiteral(", ")).toStdString()) + "]; payload=" +
           printable(QJsonDocument(payload).toJson(QJsonDocument::Compact).toStdString());
}

std::optional<std::string> hmsClockTimeFromIso(const std::string& text) {
    WallTime moment;
    std::string withFraction = text;
    if (!parseIso8601WithFraction(text, moment)) {
        if (text.size() < kWholeSecondsLength || text.find('.') != std::string::npos)
            return std::nullopt;
        withFraction.insert(kWholeSecondsLength, ".0");
        if (!parseIso8601WithFraction(withFraction, moment)) return std::nullopt;
    }
    const LocalTime local = localTime(moment);
    return zeroPadded(local.hour, 2) + ":" + zeroPadded(local.minute, 2) + ":" +
           zeroPadded(local.second, 2);
}

}  // namespace sonavault
