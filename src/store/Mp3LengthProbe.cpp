#include "store/Mp3LengthProbe.h"

#include <algorithm>
#include <vector>

#include "platform/AudioFileInfo.h"
#include "store/Mp3Place.h"

namespace sonavault {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Room for a place among frames of any kind, and for a seam before it.
constexpr std::int64_t kSpaciousBytes = std::int64_t{32} << 10;
/// A stretch that is read whole rather than halved once more.
constexpr std::int64_t kWalkedBytes = std::int64_t{256} << 10;
/// A file is looked at in at least as many stretches: an hour and a half of a full day each.
constexpr std::int64_t kStretches = 16;

std::optional<double> secondsOf(std::span<const std::uint8_t> stream) {
    const auto info = walkMp3(stream);
    if (!info) return std::nullopt;
    return info.value().durationSec();
}

class Mp3LengthProbe {
  public:
    Mp3LengthProbe(const OpenFile& file, std::int64_t size)
        : file_(file), size_(size), longestTrusted_(std::max(size / kStretches, kWalkedBytes)) {}

    std::optional<double> duration();

  private:
    /// Nothing when the file has become shorter.
    std::optional<Bytes> read(std::int64_t begin, std::int64_t end) const;
    std::optional<Mp3Place> findPlace(std::int64_t begin, std::int64_t bytes);
    std::optional<Mp3Place> findFirstPlace();
    std::optional<Mp3Place> findLastPlace();
    std::optional<Mp3Place> findPlaceBehind(std::int64_t begin);

    /// From one place up to a later one.
    std::optional<double> between(const Mp3Place& from, const Mp3Place& to);
    std::optional<double> halved(const Mp3Place& from, const Mp3Place& to);
    std::optional<double> walked(std::int64_t from, const Mp3Place& to);

    const OpenFile& file_;
    const std::int64_t size_;
    const std::int64_t longestTrusted_;
    std::int64_t placeBytes_ = 0;  // room for a place among frames as in the beginning
};

std::optional<double> Mp3LengthProbe::duration() {
    const auto first = findFirstPlace();
    if (!first) return std::nullopt;
    const auto last = findLastPlace();
    if (!last || last->at <= first->at) return std::nullopt;

    const auto before = walked(0, *first);
    const auto amid = before ? between(*first, *last) : std::nullopt;
    const auto end = amid ? read(last->at, size_) : std::nullopt;
    const auto after = end ? secondsOf(*end) : std::nullopt;
    if (!after) return std::nullopt;
    return *before + *amid + *after;
}

std::optional<Bytes> Mp3LengthProbe::read(std::int64_t begin, std::int64_t end) const {
    Bytes bytes(static_cast<std::size_t>(end - begin));
    if (file_.readAt(begin, bytes) < bytes.size()) return std::nullopt;
    return bytes;
}

std::optional<Mp3Place> Mp3LengthProbe::findPlace(std::int64_t begin, std::int64_t bytes) {
    const auto block = read(begin, begin + bytes);
    return block ? findMp3Place(*block, begin) : std::nullopt;
}

std::optional<Mp3Place> Mp3LengthProbe::findFirstPlace() {
    auto first = findPlace(0, kSpaciousBytes);
    if (first) placeBytes_ = bytesToFindPlace(first->kind);
    return first;
}

std::optional<Mp3Place> Mp3LengthProbe::findLastPlace() {
    const std::int64_t begin = size_ - placeBytes_;
    if (auto last = findPlace(begin, placeBytes_)) return last;
    return findPlace(begin - kSpaciousBytes, kSpaciousBytes);
}

/// A seam or frames that need more room may be just there; one more try is enough for both.
std::optional<Mp3Place> Mp3LengthProbe::findPlaceBehind(std::int64_t begin) {
    if (auto place = findPlace(begin, placeBytes_)) return place;
    return findPlace(begin + placeBytes_, kSpaciousBytes);
}

std::optional<double> Mp3LengthProbe::between(const Mp3Place& from, const Mp3Place& to) {
    const std::int64_t bytes = to.at - from.at;
    if (bytes <= longestTrusted_)
        if (const auto frames = framesBetween(from, to))
            return static_cast<double>(*frames) * from.kind.durationSec();
    return bytes <= kWalkedBytes ? walked(from.at, to) : halved(from, to);
}

std::optional<double> Mp3LengthProbe::halved(const Mp3Place& from, const Mp3Place& to) {
    const auto middle = findPlaceBehind(from.at + (to.at - from.at) / 2);
    if (!middle) return std::nullopt;
    const auto before = between(from, *middle);
    if (!before) return std::nullopt;
    const auto after = between(*middle, to);
    if (!after) return std::nullopt;
    return *before + *after;
}

/// Both walks run on a little behind the place, so that they agree there on what is a frame.
std::optional<double> Mp3LengthProbe::walked(std::int64_t from, const Mp3Place& to) {
    if (from == to.at) return 0;
    const auto bytes = read(from, std::min(to.at + placeBytes_, size_));
    if (!bytes) return std::nullopt;
    const auto all = secondsOf(*bytes);
    const auto behind =
        secondsOf(std::span(*bytes).subspan(static_cast<std::size_t>(to.at - from)));
    if (!all || !behind) return std::nullopt;
    return *all - *behind;
}

}  // namespace

std::optional<double> probeMp3Duration(const std::filesystem::path& file, std::int64_t size) {
    const auto opened = OpenFile::open(file);
    return opened ? probeMp3Duration(*opened.value(), size) : std::nullopt;
}

std::optional<double> probeMp3Duration(const OpenFile& file, std::int64_t size) {
    // Reading so little whole is as fast, and sure.
    if (size < 2 * kWalkedBytes) return std::nullopt;
    return Mp3LengthProbe(file, size).duration();
}

}  // namespace sonavault
