#include "review/PlaybackFile.h"

#include <cmath>
#include <utility>
#include <vector>

#include "platform/M4aDecoder.h"
#include "platform/Mp3Decoder.h"
#include "store/Mp3LengthProbe.h"

namespace sonavault {
namespace {

using Read = Result<std::shared_ptr<const PlaybackSource>>;

// What is walked here and now: on a slow disk, some hundredths of a second. What a day has gained
// lately is in memory, and takes two thousandths at most.
constexpr std::int64_t kWalkedAtOnce = std::int64_t{4} << 20;
constexpr std::int64_t kGainedAtOnce = std::int64_t{16} << 20;

// In so much the probe has found the file's first frame.
constexpr std::size_t kBeginning = std::size_t{32} << 10;

Read made(PlaybackSource source) {
    return std::make_shared<const PlaybackSource>(std::move(source));
}

Read readM4a(PlaybackSource source) {
    const auto info = readM4aInfo(source.file);
    if (!info) return Read::failure(info.error());
    source.probed = info.value();
    return made(std::move(source));
}

/// `known`: an index of what the file held before, or of nothing.
Result<Mp3FrameIndex> extended(const OpenFile& file, Mp3FrameIndex known,
                               const std::stop_token& stop) {
    const auto walked = known.extend(file, stop);
    if (!walked) return Result<Mp3FrameIndex>::failure(walked.error());
    return known;
}

Read walkHere(PlaybackSource source, Mp3FrameIndex known) {
    auto index = extended(*source.file, std::move(known), {});
    if (!index) return Read::failure(index.error());
    source.index = std::make_shared<const DayIndex>(std::move(index.value()));
    return made(std::move(source));
}

Read walkElsewhere(PlaybackSource source, Mp3FrameIndex known) {
    source.index = std::make_shared<const DayIndex>(
        [file = source.file, known = std::move(known)](const std::stop_token& stop) {
            return extended(*file, known, stop);
        });
    return made(std::move(source));
}

/// Nothing where the file has to be walked.
std::optional<AudioFileInfo> probe(const OpenFile& file, std::int64_t size) {
    const auto seconds = probeMp3Duration(file, size);
    if (!seconds) return std::nullopt;
    std::vector<std::uint8_t> beginning(kBeginning);
    beginning.resize(file.readAt(0, beginning));
    const auto first = walkMp3(beginning);
    if (!first) return std::nullopt;
    const double rate = first.value().sampleRate;
    return AudioFileInfo{std::llround(*seconds * rate), rate};
}

/// `before`: the source of that name until now, or none.
Read readMp3(PlaybackSource source, const PlaybackSource* before) {
    const auto& now = source.stamp;
    if (!now) return Read::failure("The file can't be looked at");
    const auto ready = before && before->stamp && before->stamp->inode == now->inode
                           ? before->index->ifReady()
                           : nullptr;
    const auto gained = ready ? now->size - before->stamp->size : now->size;
    const bool little = ready ? gained >= 0 && gained <= kGainedAtOnce : gained <= kWalkedAtOnce;
    auto known = ready ? *ready : Mp3FrameIndex(source.file->name());
    if (little) return walkHere(std::move(source), std::move(known));
    const auto probed = probe(*source.file, now->size);
    // Frames that lie on no grid tell their length only when each of them is looked at.
    if (!probed) return walkHere(std::move(source), std::move(known));
    source.probed = *probed;
    return walkElsewhere(std::move(source), std::move(known));
}

/// `before`: the source of that name until now, or none.
Read read(const std::filesystem::path& name, const PlaybackSource* before) {
    auto file = OpenFile::open(name);
    if (!file) return Read::failure(file.error());
    PlaybackSource source{.file = std::move(file.value())};
    // Before the file is read, so that what it gains meanwhile is not missed the next time.
    source.stamp = source.file->stamp();
    return isM4aName(name) ? readM4a(std::move(source)) : readMp3(std::move(source), before);
}

}  // namespace

AudioFileInfo PlaybackSource::info() const {
    const auto ready = index ? index->ifReady() : nullptr;
    return ready ? ready->info() : probed;
}

Result<std::unique_ptr<AudioDecoder>> PlaybackSource::openDecoder(
    const std::stop_token& stop) const {
    if (!index) return openM4a(file);
    const auto made = index->await(stop);
    if (!made) return Result<std::unique_ptr<AudioDecoder>>::failure(made.error());
    return openMp3(made.value(), file);
}

Result<PlaybackFile> PlaybackFile::open(const std::filesystem::path& file) {
    PlaybackFile opened;
    auto source = read(file, nullptr);
    if (!source) return Result<PlaybackFile>::failure(source.error());
    opened.source_ = std::move(source.value());
    return opened;
}

Outcome PlaybackFile::openAfresh() {
    const auto stamp = fileStamp(source_->file->name());
    if (stamp && stamp == source_->stamp) return Done{};
    auto source = read(source_->file->name(), source_.get());
    if (!source) return Outcome::failure(source.error());
    source_ = std::move(source.value());
    return Done{};
}

}  // namespace sonavault
