#include "review/PlaybackFile.h"

#include <utility>

#include "platform/M4aDecoder.h"
#include "platform/Mp3Decoder.h"

namespace sonavault {
namespace {

using Read = Result<std::shared_ptr<const PlaybackSource>>;

Read readM4a(const std::filesystem::path& file) {
    const auto info = readM4aInfo(file);
    if (!info) return Read::failure(info.error());
    return std::make_shared<const PlaybackSource>(PlaybackSource{file, nullptr, info.value()});
}

/// `before`: what was known of the file, or none.
Read readMp3(const std::filesystem::path& file, const PlaybackSource* before) {
    const auto index = before ? std::make_shared<Mp3FrameIndex>(*before->index)
                              : std::make_shared<Mp3FrameIndex>(file);
    if (const auto extended = index->extend(); !extended) return Read::failure(extended.error());
    return std::make_shared<const PlaybackSource>(PlaybackSource{file, index, index->info()});
}

Read read(const std::filesystem::path& file, const PlaybackSource* before) {
    return isM4aName(file) ? readM4a(file) : readMp3(file, before);
}

}  // namespace

Result<std::unique_ptr<AudioDecoder>> PlaybackSource::openDecoder() const {
    return index ? openMp3(index) : AudioDecoder::open(file);
}

Result<PlaybackFile> PlaybackFile::open(const std::filesystem::path& file) {
    PlaybackFile opened;
    opened.stamp_ = fileStamp(file);
    auto source = read(file, nullptr);
    if (!source) return Result<PlaybackFile>::failure(source.error());
    opened.source_ = std::move(source.value());
    return opened;
}

Outcome PlaybackFile::openAfresh() {
    // Before the file is read, so that what it gains meanwhile is not missed the next time.
    const auto stamp = fileStamp(source_->file);
    if (stamp && stamp == stamp_) return Done{};
    auto source = read(source_->file, source_.get());
    if (!source) return Outcome::failure(source.error());
    stamp_ = stamp;
    source_ = std::move(source.value());
    return Done{};
}

}  // namespace sonavault
