#include "pastdays/DayPlan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <set>

#include "automation/Random.h"
#include "pastdays/Labels.h"
#include "platform/Format.h"

namespace sonavault::pastdays {
namespace {

using automation::oneOf;
using enum PieceKind;

constexpr int kSecondsInHour = 3600;

// No song is begun for less than this before something that keeps to the clock.
constexpr double kShortestSongSec = 20;

using RunningOrder = std::vector<PieceKind>;

const RunningOrder& orderOf(int hour) {
    static const RunningOrder kNight{quietSong, quietSong, voicetrack, jingle,
                                     quietSong, talk,      song,       adBreak};
    static const RunningOrder kShow{talk, song, talk, adBreak, song, talk, quietSong, voicetrack};
    static const RunningOrder kDay{song, quietSong, talk, adBreak, song, jingle, song, voicetrack};
    static const RunningOrder kEvening{voicetrack, song, quietSong, adBreak, talk, quietSong};
    if (hour < 6) return kNight;
    if (hour < 10 || (hour >= 15 && hour < 19)) return kShow;
    return hour < 19 ? kDay : kEvening;
}

/// How the markers of an item are named, which differs from one automation to the next.
struct Naming {
    std::vector<const char*> opening;
    std::vector<const char*> closing;
};

const Naming& namingOf(PieceKind kind, int turn) {
    static const Naming kMic{{"mic_start"}, {"mic_end"}};
    static const Naming kMicAlone{{"mic"}, {}};
    static const Naming kVtSetup{{"vt_pre"}, {"vt_post"}};
    static const Naming kVtSpan{{"vt_pre", "vt_start"}, {"vt_end", "vt_post"}};
    static const Naming kVtAlone{{"vt"}, {}};
    static const Naming kBreak{{"break_start"}, {"break_end"}};
    static const Naming kBreakAlone{{"break"}, {}};
    static const Naming kAlert{{"eas"}, {}};
    static const Naming kNote{{"note"}, {}};
    static const Naming kCustom{{"custom"}, {}};
    static const Naming kNothing;
    switch (kind) {
        case talk:
            return turn % 6 == 2 ? kMicAlone : kMic;
        case voicetrack:
            return turn % 3 == 0 ? kVtSpan : turn % 3 == 1 ? kVtSetup : kVtAlone;
        case adBreak:
            return turn % 4 == 1 ? kBreakAlone : kBreak;
        case alert:
            return kAlert;
        case jingle:
            return kCustom;
        default:
            return turn % 2 == 0 ? kNote : kNothing;
    }
}

class Planner {
  public:
    Planner(const DayOutline& outline, const std::vector<PieceShape>& pieces, double frameSec)
        : outline_(outline), pieces_(pieces), frameSec_(frameSec), random_(outline.seed + 77) {
        for (std::size_t i = 0; i < pieces.size(); ++i) of(pieces[i].kind).push_back(i);
        plan_.frames = static_cast<std::int64_t>(
            std::floor((outline.endSec - outline.startSec) / frameSec + 1e-6));
    }

    DayPlan plan() {
        const std::vector<double> cuts = clockCuts();
        for (std::size_t i = 0; i + 1 < cuts.size(); ++i) planStretch(cuts[i], cuts[i + 1]);
        if (outline_.onlyHourMarks)
            std::erase_if(plan_.markers,
                          [](const LoggedMarker& marker) { return marker.type != "hour"; });
        return std::move(plan_);
    }

  private:
    std::vector<std::size_t>& of(PieceKind kind) { return byKind_[static_cast<std::size_t>(kind)]; }

    /// The moments that what is on the air has to keep.
    std::vector<double> clockCuts() const {
        std::set<double> cuts{outline_.startSec, outline_.endSec};
        for (double hour = 0; hour < outline_.endSec; hour += kSecondsInHour)
            if (hour > outline_.startSec) cuts.insert(hour);
        for (const Outage& outage : outline_.outages) cuts.insert({outage.from, outage.to});
        return {cuts.begin(), cuts.end()};
    }

    void planStretch(double from, double to) {
        const std::int64_t limit = to == outline_.endSec ? plan_.frames : frameAt(to);
        const Outage* const outage = outageAt(from);
        tellOutages(from);
        const bool onTheHour = std::fmod(from, kSecondsInHour) == 0;
        if (onTheHour && (!outage || outage->told)) markHour(from);
        if (outage) {
            while (at_ < limit) use(of(silence).front(), 1);
        } else {
            if (onTheHour) useWhole(jingle, limit);
            fillAir(static_cast<int>(from) / kSecondsInHour, limit);
        }
    }

    void fillAir(int hour, std::int64_t limit) {
        const RunningOrder& order = orderOf(hour);
        // An alert comes into some hours, behind their first items.
        constexpr std::size_t kAlertPlace = 3;
        const bool hasAlert = hour % 4 == 1;
        for (std::size_t i = 0; at_ < limit; ++i) {
            if (hasAlert && i == kAlertPlace) putItem(alert, limit);
            putItem(order[i % order.size()], limit);
        }
    }

    /// An item with its markers; where there is no room for all of it, a song up to the limit.
    void putItem(PieceKind kind, std::int64_t limit) {
        const std::int64_t room = limit - at_;
        if (room <= 0) return;
        const std::size_t piece = choose(kind);
        const std::int64_t length = pieces_[piece].frames;
        if (length <= room) {
            const Naming& naming = namingOf(kind, turns_[static_cast<std::size_t>(kind)]++);
            const std::string label = nextLabel(kind);
            const double seconds = std::round(static_cast<double>(length) * frameSec_ * 10) / 10;
            for (const char* type : naming.opening) mark(clock(), type, label, seconds);
            use(piece, length);
            for (const char* type : naming.closing) mark(clock(), type, label, 0);
        } else if (static_cast<double>(room) * frameSec_ >= kShortestSongSec) {
            const std::size_t filling = choose(song);
            use(filling, std::min(room, pieces_[filling].frames));
        } else {
            useWhole(jingle, limit);
        }
    }

    /// A piece without markers, as far as there is room.
    void useWhole(PieceKind kind, std::int64_t limit) {
        const std::size_t piece = choose(kind);
        use(piece, std::min(pieces_[piece].frames, limit - at_));
    }

    void use(std::size_t piece, std::int64_t frames) {
        if (frames <= 0) return;
        plan_.uses.push_back({piece, frames});
        at_ += frames;
    }

    /// Any piece of the kind but the one that came last.
    std::size_t choose(PieceKind kind) {
        const auto& choices = of(kind);
        auto& last = last_[static_cast<std::size_t>(kind)];
        const auto count = static_cast<int>(choices.size());
        auto chosen = static_cast<std::size_t>(oneOf(random_, count));
        if (last == chosen) chosen = (chosen + 1) % choices.size();
        last = chosen;
        return choices[chosen];
    }

    std::string nextLabel(PieceKind kind) {
        const Labels labels = labelsOf(kind);
        return labels[static_cast<std::size_t>(oneOf(random_, static_cast<int>(labels.size())))];
    }

    const Outage* outageAt(double second) const {
        const auto found = std::find_if(
            outline_.outages.begin(), outline_.outages.end(),
            [second](const Outage& outage) { return outage.from <= second && second < outage.to; });
        return found == outline_.outages.end() ? nullptr : &*found;
    }

    // In the words in which the automation's playback events are logged.
    void tellOutages(double second) {
        for (const Outage& outage : outline_.outages) {
            if (outage.told && outage.to == second)
                mark(second, "silence_end",
                     "Cadenzo dead-air recovered — " + fixedPoint(outage.to - outage.from, 1) + "s",
                     0);
            if (outage.told && outage.from == second)
                mark(second, "silence_start", "Cadenzo dead-air start — playlist empty", 0);
        }
    }

    void markHour(double second) {
        mark(second, "hour", "Hour " + zeroPadded(static_cast<int>(second) / kSecondsInHour, 2), 0);
    }

    void mark(double second, const std::string& type, const std::string& label, double duration) {
        // What ends with the day is told in its last second: the next is another day's.
        const double last = std::ceil(outline_.endSec) - 1;
        plan_.markers.push_back({static_cast<int>(std::min(second, last)), type, label, duration});
    }

    /// The first frame that begins at that moment or after it.
    std::int64_t frameAt(double second) const {
        return static_cast<std::int64_t>(
            std::ceil((second - outline_.startSec) / frameSec_ - 1e-6));
    }

    double clock() const { return outline_.startSec + static_cast<double>(at_) * frameSec_; }

    const DayOutline& outline_;
    const std::vector<PieceShape>& pieces_;
    const double frameSec_;
    std::mt19937 random_;

    static constexpr std::size_t kKinds = static_cast<std::size_t>(silence) + 1;
    std::array<std::vector<std::size_t>, kKinds> byKind_;
    std::array<std::optional<std::size_t>, kKinds> last_;
    std::array<int, kKinds> turns_{};

    DayPlan plan_;
    std::int64_t at_ = 0;
};

}  // namespace

DayPlan planDay(const DayOutline& outline, const std::vector<PieceShape>& pieces, double frameSec) {
    return Planner(outline, pieces, frameSec).plan();
}

std::vector<PieceShape> shapesOf(const std::vector<Piece>& pieces) {
    std::vector<PieceShape> shapes;
    shapes.reserve(pieces.size());
    for (const Piece& piece : pieces) shapes.push_back({piece.kind, piece.sound.frames()});
    return shapes;
}

}  // namespace sonavault::pastdays
