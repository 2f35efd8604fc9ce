#include "recorder/LAMEEncoder.h"

#include <lame/lame.h>

#include <algorithm>
#include <cmath>

#include "platform/Mp3Header.h"
#include "platform/Resampler.h"

namespace sonavault {

namespace {

constexpr std::size_t kFirstBufferBytes = 65536;
constexpr int kMonoMode = 3;
constexpr int kJointStereoMode = 1;
constexpr int kQuality = 5;

/// Whether the library may be given this: not what is no number, nor what no sound can be, where
/// its arithmetic is not defined. What is merely too loud it takes as it is.
bool isSound(float sample) {
    return std::abs(sample) <= Resampler::kAbsurdLevel;
}

/// A sample that is no sound, as something the library may be given.
float tamed(float sample) {
    return sample == sample ? std::clamp(sample, -1.0F, 1.0F) : 0.0F;
}

/// How many of these bytes, which begin with a frame, belong to frames that are all there. Frames
/// whose size nobody can tell are never waited for.
std::size_t bytesOfWholeFrames(std::span<const std::uint8_t> stream) {
    std::size_t whole = 0;
    while (stream.size() - whole >= kMp3HeaderBytes) {
        const auto header = parseMp3Header(stream.subspan(whole));
        if (!header) return stream.size();
        const auto frame = static_cast<std::size_t>(header->frameBytes);
        if (stream.size() - whole < frame) break;
        whole += frame;
    }
    return whole;
}

}  // namespace

std::unique_ptr<LAMEEncoder> LAMEEncoder::create(int sampleRate, int channels, int bitrateKbps,
                                                 Log& log) {
    // The library takes any rate at its word and would spend its time and memory on a senseless
    // one.
    if (sampleRate < Resampler::kLowestRate || sampleRate > Resampler::kHighestRate) return nullptr;
    lame_global_struct* gfp = lame_init();
    if (!gfp) return nullptr;
    const bool accepted =
        lame_set_in_samplerate(gfp, sampleRate) >= 0 && lame_set_num_channels(gfp, channels) >= 0 &&
        lame_set_brate(gfp, bitrateKbps) >= 0 &&
        lame_set_mode(gfp, static_cast<MPEG_mode>(channels == 1 ? kMonoMode : kJointStereoMode)) >=
            0 &&
        lame_set_quality(gfp, kQuality) >= 0 &&
        lame_set_bWriteVbrTag(gfp, 0) >= 0 &&  // a header frame could not be continued
        lame_init_params(gfp) >= 0;
    if (!accepted) {
        lame_close(gfp);
        return nullptr;
    }
    return std::unique_ptr<LAMEEncoder>(new LAMEEncoder(gfp, log));
}

LAMEEncoder::LAMEEncoder(lame_global_struct* gfp, Log& log)
    : gfp_(gfp), log_(log), outBuf_(kFirstBufferBytes) {}

LAMEEncoder::~LAMEEncoder() {
    close();
    if (gfp_) lame_close(gfp_);
}

Outcome LAMEEncoder::open(const std::filesystem::path& file, DiskFlusher& flusher) {
    auto opened = AppendFile::open(file, flusher);
    if (!opened) return Outcome::failure(opened.error());
    file_ = std::move(opened.value());
    return Done{};
}

void LAMEEncoder::ensureBuf(std::size_t frames) {
    const std::size_t needed = frames * 5 / 4 + 7200;  // the bound that the library asks for
    if (outBuf_.size() < needed) outBuf_.assign(needed + 1024, 0);
}

void LAMEEncoder::encodeMono(std::span<const float> samples) {
    if (!gfp_ || !file_ || samples.empty()) return;
    hasEncoded_ = true;
    ensureBuf(samples.size());
    if (!std::all_of(samples.begin(), samples.end(), isSound)) {
        tamed_.resize(samples.size());
        std::transform(samples.begin(), samples.end(), tamed_.begin(),
                       [](float sample) { return isSound(sample) ? sample : tamed(sample); });
        samples = tamed_;
    }
    const int bytes = lame_encode_buffer_ieee_float(
        gfp_, samples.data(), samples.data(), static_cast<int>(samples.size()), outBuf_.data(),
        static_cast<int>(outBuf_.size()));
    if (bytes < 0) log_.line("LAMEEncoder: encode error " + std::to_string(bytes));
    takeEncoded(bytes);
    writeFirst(bytesOfWholeFrames(unwritten_));
}

void LAMEEncoder::takeEncoded(int bytes) {
    if (bytes > 0) unwritten_.insert(unwritten_.end(), outBuf_.begin(), outBuf_.begin() + bytes);
}

void LAMEEncoder::writeFirst(std::size_t bytes) {
    file_->write(std::span(unwritten_).first(bytes));
    unwritten_.erase(unwritten_.begin(), unwritten_.begin() + static_cast<std::ptrdiff_t>(bytes));
}

void LAMEEncoder::close() {
    if (!gfp_ || !file_) return;
    if (hasEncoded_)
        takeEncoded(lame_encode_flush(gfp_, outBuf_.data(), static_cast<int>(outBuf_.size())));
    writeFirst(unwritten_.size());
    file_.reset();
    lame_close(gfp_);
    gfp_ = nullptr;
}

}  // namespace sonavault
