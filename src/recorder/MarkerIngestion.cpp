#include "recorder/MarkerIngestion.h"

#include "platform/Format.h"
#include "platform/LocalTime.h"
#include "recorder/WallClockSync.h"
#include "store/MarkerLogWriter.h"

namespace sonavault {

namespace {

constexpr auto kMicStart = "mic_start";

/// Two markers with one key are the same event; its length and its other times don't count.
std::string keyOf(const MarkerWire& marker) {
    return marker.type + '|' + marker.clockTime + '|' + marker.label.value_or("");
}

Outcome appendRow(const std::filesystem::path& csv, const std::string& row, DiskFlusher& flusher) {
    writeCSVHeaderIfNeeded(csv, flusher);
    return appendMarkerRow(csv, row, flusher);
}

/// How long the message was under way, as far as both clocks can tell: "12ms".
std::string deltaText(const std::string& sentIso8601, WallTime received) {
    WallTime sent;
    if (!parseIso8601WithFraction(sentIso8601, sent)) return "unparseable";
    return std::to_string(roundedMilliseconds(secondsBetween(sent, received))) + "ms";
}

}  // namespace

std::string clockTextWithMilliseconds(WallTime moment) {
    const LocalTime local = localTime(moment);
    return zeroPadded(local.hour, 2) + ':' + zeroPadded(local.minute, 2) + ':' +
           zeroPadded(local.second, 2) + '.' + zeroPadded(local.nanosecond / 1'000'000, 3);
}

MarkerIngestion::MarkerIngestion(const Clock& clock, Log& log, const StationFolder& stationFolder,
                                 DiskFlusher& flusher, ArmWatch armWatch)
    : clock_(clock),
      log_(log),
      stationFolder_(stationFolder),
      flusher_(flusher),
      armWatch_(std::move(armWatch)) {}

void MarkerIngestion::handleIncomingMarker(const MarkerWire& marker) {
    if (!recentMarkers_.remember(keyOf(marker))) return;
    const auto urls = stationFolder_.makeOutputURLs(clock_.now(), log_);
    if (!urls) {
        log_.line("Sonavault recorder: marker drop — no station folder");
        return;
    }
    const std::string row = markerRow(marker.clockTime, marker.type, marker.label.value_or(""),
                                      marker.durationSec.value_or(0));
    if (const auto appended = appendRow(urls->csv, row, flusher_); !appended) {
        log_.line("Sonavault recorder: marker CSV append failed: " + appended.error());
        return;
    }
    logReceipt(marker, urls->csv);
    if (kVerboseTimingDiagnostics) diagnose(marker);
}

void MarkerIngestion::appendSyntheticMarker(const std::string& clockTime, const std::string& type,
                                            const std::string& label, double durationSec) {
    const auto urls = stationFolder_.makeOutputURLs(clock_.now(), log_);
    if (!urls) return;
    const std::string row = markerRow(clockTime, type, label, durationSec);
    if (const auto appended = appendRow(urls->csv, row, flusher_); !appended)
        log_.line("Sonavault recorder: synthetic marker append failed: " + appended.error());
}

void MarkerIngestion::logReceipt(const MarkerWire& marker, const std::filesystem::path& csv) {
    log_.line("Sonavault recorder: marker [" + marker.type + " @ " + marker.clockTime + "]" +
              (marker.testMode.value_or(false) ? " (test_mode)" : "") + " → " +
              csv.filename().string());
}

void MarkerIngestion::diagnose(const MarkerWire& marker) {
    const WallTime received = clock_.now();
    log_.line("Sonavault diag: recv " + marker.type + " emit_clock=" + marker.clockTime +
              " recv_wall=" + clockTextWithMilliseconds(received) +
              " recv-emit_delta=" + deltaText(marker.wallClockIso8601, received));
    if (marker.type != kMicStart) return;
    armWatch_({.armedAt = received, .emitClockTime = marker.clockTime});
    log_.line("Sonavault diag: armed first-non-silent watch (mic_start emit_clock=" +
              marker.clockTime + ")");
}

}  // namespace sonavault
