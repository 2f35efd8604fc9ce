#include <cstdint>
#include <string>

#include "Check.h"
#include "export/ScheduledAircheckCard.h"

namespace {

using sonavault::testing::check;

}  // namespace

/// Any bytes are no cards at all, or cards that are the same after being stored and read again, and
/// of which those that can come due say all that a run takes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavault;
    const auto cards = decodeCards(std::string(data, data + size));
    if (!cards) return 0;
    check(decodeCards(encodeCards(*cards)) == cards);
    const LocalTime lateOnSunday{.year = 2026, .month = 5, .day = 10, .hour = 23, .minute = 59};
    for (const auto& card : *cards) {
        check(!card.isDue(lateOnSunday) || (card.isReady() && card.endHour < 23));
        const auto name = scheduledAircheckName(card, "2026-05-10");
        check(name.find('/') == std::string::npos && name.find('\0') == std::string::npos);
        check(name.ends_with(".mp3"));
    }
    return 0;
}
