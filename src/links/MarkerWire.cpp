#include "links/MarkerWire.h"

#include "platform/JsonFields.h"

namespace sonavault {

namespace {

constexpr auto kType = "type";
constexpr auto kClockTime = "clock_time";
constexpr auto kWallClock = "wall_clock_iso8601";
constexpr auto kLabel = "label";
constexpr auto kDuration = "duration_sec";
constexpr auto kFile = "file";
constexpr auto kTestMode = "test_mode";

}  // namespace

Result<MarkerWire> decodeMarkerWire(std::span<const std::uint8_t> payload) {
    using Decoded = Result<MarkerWire>;
    auto parsed =
        JsonFields::parse({reinterpret_cast<const char*>(payload.data()), payload.size()});
    if (!parsed) return Decoded::failure(parsed.error());

    JsonFields& fields = parsed.value();
    for (const char* key : {kType, kClockTime, kWallClock}) fields.require(key);
    MarkerWire marker;
    marker.type = fields.text(kType).value_or("");
    marker.clockTime = fields.text(kClockTime).value_or("");
    marker.wallClockIso8601 = fields.text(kWallClock).value_or("");
    marker.label = fields.text(kLabel);
    marker.durationSec = fields.number(kDuration);
    marker.file = fields.text(kFile);
    marker.testMode = fields.boolean(kTestMode);
    if (!fields.error().empty()) return Decoded::failure(fields.error());
    return marker;
}

}  // namespace sonavault
