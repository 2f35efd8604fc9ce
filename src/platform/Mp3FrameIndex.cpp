#include "platform/Mp3FrameIndex.h"

#include <algorithm>
#include <cmath>

namespace sonavault {
namespace {

// Sound of a second or so: no two recordings have the same, unless both are silent.
constexpr std::int64_t kRecognisedBy = 4096;

// How much of the file a walk has in memory at a time.
constexpr std::int64_t kMappedAtATime = std::int64_t{8} << 20;

constexpr auto kStopped = "Stopped";

int channelsOf(std::span<const std::uint8_t> bytes, std::int64_t frame) {
    constexpr unsigned kMonoMode = 3;
    return bytes[static_cast<std::size_t>(frame) + 3] >> 6U == kMonoMode ? 1 : 2;
}

Mp3Header headerOf(const Mp3FrameIndex::Group& group) {
    Mp3Header header;
    header.sampleRate = group.sampleRate;
    header.samplesPerFrame = group.samplesPerFrame;
    return header;
}

}  // namespace

Result<Mp3FrameIndex> Mp3FrameIndex::of(const std::filesystem::path& file,
                                        const std::stop_token& stop) {
    Mp3FrameIndex index(file);
    auto walked = index.extend(stop);
    if (!walked) return Result<Mp3FrameIndex>::failure(walked.error());
    return index;
}

Result<FrameCount> Mp3FrameIndex::extend(const std::stop_token& stop) {
    const auto opened = OpenFile::open(file_);
    if (!opened) return Result<FrameCount>::failure(opened.error());
    return extend(*opened.value(), stop);
}

Result<FrameCount> Mp3FrameIndex::extend(const OpenFile& opened, const std::stop_token& stop) {
    using Extended = Result<FrameCount>;
    const auto stamp = opened.stamp();
    const auto mapped = MappedFile::of(opened.descriptor(), MappedFile::Order::frontToBack);
    if (!mapped) return Extended::failure(mapped.error());
    const auto bytes = mapped.value().bytes();

    const bool sameFile = stamp && stamp_ && stamp->inode == stamp_->inode;
    const bool continued = sameFile && isContinuedIn(bytes);
    Mp3FrameIndex grown = continued ? *this : Mp3FrameIndex(file_);
    grown.stamp_ = stamp;
    grown.fileBytes_ = bytes.size();
    grown.forgetUnsettled(bytes);
    const FrameCount known = grown.length_.frames();
    const auto walked = grown.walk(mapped.value(), grown.settledBytes_, stop);
    if (!walked) return Extended::failure(walked.error());
    *this = std::move(grown);
    return known;
}

/// Goes back to where a walk of the file as it is now can go on.
void Mp3FrameIndex::forgetUnsettled(std::span<const std::uint8_t> bytes) {
    while (groups_.size() > settledGroups_) {
        length_.add(headerOf(groups_.back()), -groups_.back().count);
        groups_.pop_back();
    }
    if (groups_.empty()) settledBytes_ = mp3DataStart(bytes);
}

Outcome Mp3FrameIndex::walk(const MappedFile& mapped, std::int64_t from,
                            const std::stop_token& stop) {
    const auto bytes = mapped.bytes();
    Mp3Walk walk = groups_.empty() ? Mp3Walk(bytes) : Mp3Walk(bytes, from);
    std::int64_t letGo = from;
    while (const auto run = walk.next(kGroupFrames)) {
        if (groups_.empty()) channels_ = channelsOf(bytes, run->begin);
        if (run->begin + Mp3Walk::kLookAhead < mp3DataEnd(bytes)) {
            settledGroups_ = groups_.size();
            settledBytes_ = run->begin;
        }
        append(*run);
        if (run->end - letGo < kMappedAtATime) continue;
        if (stop.stop_requested()) return Outcome::failure(kStopped);
        letGo = run->end;
        mapped.letGoBefore(letGo);
    }
    if (groups_.empty()) return Outcome::failure(kNoMp3Frame);
    const auto settled = bytes.first(static_cast<std::size_t>(settledBytes_));
    const auto kept = std::min(settled.size(), static_cast<std::size_t>(kRecognisedBy));
    const auto last = settled.last(kept);
    lastSettled_.assign(last.begin(), last.end());
    return Done{};
}

void Mp3FrameIndex::append(const Mp3Run& run) {
    Group group;
    group.begin = run.begin;
    group.position = length_.firstRate() == 0 ? 0 : length_.exactFrames();
    group.sampleRate = run.header.sampleRate;
    group.samplesPerFrame = static_cast<std::int16_t>(run.header.samplesPerFrame);
    group.count = static_cast<std::int16_t>(run.count);
    groups_.push_back(group);
    length_.add(run.header, run.count);
}

bool Mp3FrameIndex::isContinuedIn(std::span<const std::uint8_t> bytes) const {
    if (settledGroups_ == 0 || bytes.size() < fileBytes_) return false;
    const auto settled = bytes.first(static_cast<std::size_t>(settledBytes_));
    const auto last = settled.last(lastSettled_.size());
    return std::equal(last.begin(), last.end(), lastSettled_.begin(),
                      [](auto one, char other) { return one == static_cast<std::uint8_t>(other); });
}

AudioFileInfo Mp3FrameIndex::info() const {
    return {length_.frames(), static_cast<double>(length_.firstRate())};
}

Mp3FrameIndex::Place Mp3FrameIndex::find(FrameCount position) const {
    const auto behind = std::upper_bound(groups_.begin(), groups_.end(), position,
                                         [](FrameCount wanted, const Group& group) {
                                             return wanted < std::llround(group.position);
                                         });
    const auto group = behind == groups_.begin() ? behind : behind - 1;
    Place place{static_cast<std::size_t>(group - groups_.begin()), 0};
    const double perFrame =
        static_cast<double>(group->samplesPerFrame) * length_.firstRate() / group->sampleRate;
    const double into = (static_cast<double>(position) - group->position) / perFrame;
    // Rounded positions may put the true frame one further on either side.
    place.frame =
        std::clamp<std::int64_t>(static_cast<std::int64_t>(into) - 1, 0, group->count - 1);
    while (place.frame + 1 < group->count && positionOf({place.group, place.frame + 1}) <= position)
        ++place.frame;
    return place;
}

Mp3FrameIndex::Place Mp3FrameIndex::stepBack(Place from, std::int64_t count) const {
    while (from.frame < count && from.group > 0) {
        count -= from.frame;
        --from.group;
        from.frame = groups_[from.group].count;
    }
    from.frame = std::max<std::int64_t>(0, from.frame - count);
    return from;
}

FrameCount Mp3FrameIndex::positionOf(Place place) const {
    const Group& group = groups_[place.group];
    if (place.frame == group.count) {
        const bool last = place.group + 1 == groups_.size();
        return last ? length_.frames() : std::llround(groups_[place.group + 1].position);
    }
    return std::llround(group.position + static_cast<double>(place.frame) * group.samplesPerFrame *
                                             length_.firstRate() / group.sampleRate);
}

}  // namespace sonavault
