#include "platform/Mp3Decoder.h"

#include <algorithm>

namespace sonavault {
namespace {

/// `source` drawn out or pressed together to the length of `target`.
void stretch(std::span<const float> source, std::span<float> target) {
    const double step = static_cast<double>(source.size()) / static_cast<double>(target.size());
    for (std::size_t i = 0; i < target.size(); ++i) {
        const double at = static_cast<double>(i) * step;
        const auto left = std::min(static_cast<std::size_t>(at), source.size() - 1);
        const auto right = std::min(left + 1, source.size() - 1);
        const auto share = static_cast<float>(at - static_cast<double>(left));
        target[i] = source[left] * (1 - share) + source[right] * share;
    }
}

}  // namespace

Result<std::unique_ptr<AudioDecoder>> openMp3(std::shared_ptr<const Mp3FrameIndex> index) {
    using Opened = Result<std::unique_ptr<AudioDecoder>>;
    auto file = OpenFile::open(index->file());
    if (!file) return Opened::failure(file.error());
    return openMp3(std::move(index), std::move(file.value()));
}

Result<std::unique_ptr<AudioDecoder>> openMp3(std::shared_ptr<const Mp3FrameIndex> index,
                                              OpenFile::Shared file) {
    using Opened = Result<std::unique_ptr<AudioDecoder>>;
    auto codec = FrameCodec::open(AV_CODEC_ID_MP3, nullptr);
    if (!codec) return Opened::failure("There is no decoder for MPEG audio");
    return std::unique_ptr<AudioDecoder>(
        std::make_unique<Mp3Decoder>(std::move(index), std::move(file), std::move(codec)));
}

Mp3Decoder::Mp3Decoder(std::shared_ptr<const Mp3FrameIndex> index, OpenFile::Shared file,
                       std::unique_ptr<FrameCodec> codec)
    : index_(std::move(index)),
      file_(std::move(file)),
      codec_(std::move(codec)),
      length_(index_->info().frames) {
    goTo({});
}

void Mp3Decoder::seek(FrameCount position) {
    position = std::clamp<FrameCount>(position, 0, length_);
    if (position == position_) return;
    position_ = position;
    decoded_ = {};
    codec_->forget();
    if (position == length_) return;
    const auto wanted = index_->find(position);
    goTo(index_->stepBack(wanted, kPreRollFrames));
    while (place_ != wanted) decodeFrame();
    decoded_ = {};
}

/// Finds the frame's bytes by stepping to it from the beginning of its group.
void Mp3Decoder::goTo(Mp3FrameIndex::Place place) {
    offset_ = index_->groups()[place.group].begin;
    for (std::int64_t i = 0; i < place.frame && offset_ >= 0; ++i) {
        const auto header = parseMp3Header(file_.at(offset_, kMp3HeaderBytes));
        offset_ = header ? offset_ + header->frameBytes : -1;
    }
    place_ = place;
}

DecodedAudio Mp3Decoder::next(FrameCount atMost) {
    if (position_ == length_ || atMost <= 0) return {position_, 0, {}};
    // After a seek the frame begins before the position.
    while (decoded_.position + decoded_.frames <= position_) decodeFrame();
    const FrameCount skip = position_ - decoded_.position;
    DecodedAudio piece{position_, std::min(atMost, decoded_.frames - skip), decoded_.planes};
    for (auto& plane : piece.planes)
        if (plane) plane += skip;
    position_ += piece.frames;
    return piece;
}

void Mp3Decoder::decodeFrame() {
    const FrameCount begin = index_->positionOf(place_);
    const FrameCount frames = index_->positionOf({place_.group, place_.frame + 1}) - begin;
    present(decodeBytes(), frames);
    decoded_.position = begin;
    decoded_.frames = frames;
    const bool groupEnds = ++place_.frame == index_->groups()[place_.group].count;
    if (!groupEnds) return;
    place_ = {place_.group + 1, 0};
    if (place_.group < index_->groups().size()) offset_ = index_->groups()[place_.group].begin;
}

/// The frame's sound; nothing when it can't be decoded, or the file is no longer what it was.
const AVFrame* Mp3Decoder::decodeBytes() {
    if (offset_ < 0) return nullptr;
    const auto header = parseMp3Header(file_.at(offset_, kMp3HeaderBytes));
    if (!header) {
        offset_ = -1;
        return nullptr;
    }
    const auto bytes = file_.at(offset_, static_cast<std::size_t>(header->frameBytes));
    offset_ += header->frameBytes;
    if (static_cast<int>(bytes.size()) < header->frameBytes) return nullptr;
    return codec_->decode(bytes);
}

/// Makes the planes of decoded_ hold the sound of `frame`, in `frames` samples.
void Mp3Decoder::present(const AVFrame* frame, FrameCount frames) {
    for (std::size_t c = 0; c < static_cast<std::size_t>(channels()); ++c) {
        const bool second = frame && c > 0 && frame->ch_layout.nb_channels > 1;
        const float* source =
            frame ? reinterpret_cast<const float*>(frame->extended_data[second ? 1 : 0]) : nullptr;
        if (!source || frame->nb_samples != frames) {
            auto& other = stretched_[c];
            other.assign(static_cast<std::size_t>(frames), 0.0F);
            if (source) stretch({source, static_cast<std::size_t>(frame->nb_samples)}, other);
            source = other.data();
        }
        decoded_.planes[c] = source;
    }
}

}  // namespace sonavault
