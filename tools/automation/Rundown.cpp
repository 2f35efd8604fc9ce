#include "automation/Rundown.h"

#include <algorithm>
#include <array>

#include "automation/Random.h"
#include "platform/Format.h"
#include "platform/LocalTime.h"

namespace sonavault::automation {

namespace {

constexpr int kSecondsInHour = 3600;

// Short enough that a minute shows something of everything.
constexpr int kBlockSec = 150;
constexpr int kBlocksPerAlert = 6;
constexpr int kAlertSec = 8;

using Texts = std::array<const char*, 6>;

constexpr Texts kTalks{
    "Nora at the desk",        "Weather with Tomas", "Traffic, live from the ring",
    "Studio guest: the mayor", "Phone-in, line 3",   "Nora: \"what a morning\""};
constexpr Texts kSongs{"The Paper Boats - Harbour Lights",    "Ines Valdor - Slow Orange",
                       "Kite & Anchor - Nine Miles, Walking", "The Lamplighters - \"Home, Again\"",
                       "Quarter Past - Windows Down",         "Marlo - Salt"};
constexpr Texts kBreaks{"Stopset A, 4 spots", "Stopset B, 3 spots", "Stopset C, 5 spots",
                        "Local spots",        "Sponsor: the ferry", "Promo and 2 spots"};
constexpr Texts kVoicetracks{
    "VT: Jonas, evening show",     "VT: Jonas over the intro", "VT: Mirela, back-announce",
    "VT: Mirela, weekend line-up", "VT: night desk",           "VT: Jonas, \"stay tuned\""};
constexpr Texts kAlerts{"Required weekly test",  "Severe weather statement",
                        "Required monthly test", "High water at the quay",
                        "Road closed, coast",    "Test"};

/// Lays one item after the other.
class HourMaker {
  public:
    HourMaker(long long hour, unsigned seed)
        : random_(seed * 2654435761U + static_cast<unsigned>(hour)) {}

    std::vector<RundownItem> make() {
        for (int block = 0; block < kSecondsInHour / kBlockSec; ++block) addBlock(block);
        return std::move(items_);
    }

  private:
    void addBlock(int block) {
        const int end = (block + 1) * kBlockSec;
        add(ItemKind::talk, 18 + oneOf(random_, 9), kTalks);
        add(ItemKind::song, 20 + oneOf(random_, 9), kSongs);
        add(ItemKind::adBreak, 16 + oneOf(random_, 9), kBreaks);
        add(ItemKind::song, 16 + oneOf(random_, 5), kSongs);
        if (block % kBlocksPerAlert == kBlocksPerAlert / 2)
            add(ItemKind::alert, kAlertSec, kAlerts);
        else
            add(ItemKind::voicetrack, 16 + oneOf(random_, 9), kVoicetracks);
        add(ItemKind::song, end - items_.back().end(), kSongs);
    }

    void add(ItemKind kind, int length, const Texts& labels) {
        const auto label =
            static_cast<std::size_t>(oneOf(random_, static_cast<int>(labels.size())));
        items_.push_back({kind, items_.empty() ? 0 : items_.back().end(), length, labels[label]});
    }

    std::mt19937 random_;
    std::vector<RundownItem> items_;
};

WallTime topOfHour(WallTime moment) {
    const LocalTime time = localTime(moment);
    return moment - std::chrono::minutes(time.minute) - std::chrono::seconds(time.second) -
           std::chrono::nanoseconds(time.nanosecond);
}

Cue cueAt(WallTime top, int second, const char* type, const RundownItem& item, bool hasLength) {
    StationMarker marker;
    marker.type = type;
    marker.label = item.label;
    if (hasLength) marker.durationSec = item.length;
    return {top + std::chrono::seconds(second), std::move(marker)};
}

void addPair(std::vector<Cue>& cues, WallTime top, const RundownItem& item, const char* opening,
             const char* closing) {
    cues.push_back(cueAt(top, item.start, opening, item, true));
    cues.push_back(cueAt(top, item.end(), closing, item, false));
}

void addCues(std::vector<Cue>& cues, WallTime top, const RundownItem& item) {
    switch (item.kind) {
        case ItemKind::talk:
            return addPair(cues, top, item, "mic_start", "mic_end");
        case ItemKind::adBreak:
            return addPair(cues, top, item, "break_start", "break_end");
        case ItemKind::voicetrack:
            return addPair(cues, top, item, "vt_pre", "vt_post");
        case ItemKind::alert:
            cues.push_back(cueAt(top, item.start, "eas", item, true));
            break;
        case ItemKind::song:
            cues.push_back(cueAt(top, item.start, "note", item, true));
            break;
    }
}

Cue hourCue(WallTime top) {
    StationMarker marker;
    marker.type = "hour";
    marker.label = "Hour " + zeroPadded(localTime(top).hour, 2);
    return {top, std::move(marker)};
}

}  // namespace

std::vector<RundownItem> makeHour(long long hoursSince1970, unsigned seed) {
    return HourMaker(hoursSince1970, seed).make();
}

Rundown::OnAir Rundown::at(WallTime moment) {
    const WallTime top = topOfHour(moment);
    const auto& items = itemsOf(top);
    const auto item = std::find_if(items.begin(), items.end() - 1, [&](const RundownItem& each) {
        return moment < top + std::chrono::seconds(each.end());
    });
    return {item->kind, top + std::chrono::seconds(item->end())};
}

std::vector<Cue> Rundown::cues(WallTime from, WallTime to) {
    std::vector<Cue> all;
    // An hour ends with a song, which has no closing marker: nothing of it lies in the next.
    for (WallTime top = topOfHour(from); top < to;
         top = topOfHour(top + std::chrono::seconds(kSecondsInHour))) {
        all.push_back(hourCue(top));
        for (const RundownItem& item : itemsOf(top)) addCues(all, top, item);
    }
    std::erase_if(all, [&](const Cue& cue) { return cue.at < from || cue.at >= to; });
    return all;
}

const std::vector<RundownItem>& Rundown::itemsOf(WallTime topOfHour) {
    if (items_.empty() || hour_ != topOfHour) {
        hour_ = topOfHour;
        items_ = makeHour(
            std::chrono::floor<std::chrono::hours>(topOfHour).time_since_epoch().count(), seed_);
    }
    return items_;
}

}  // namespace sonavault::automation
