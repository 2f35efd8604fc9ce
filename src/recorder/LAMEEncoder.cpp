#include "recorder/LAMEEncoder.h"

#include <lame/lame.h>

#include <algorithm>
#include <limits>

namespace sonavault {

namespace {

constexpr std::size_t kFirstBufferBytes = 65536;
constexpr int kMonoMode = 3;
constexpr int kJointStereoMode = 1;
constexpr int kQuality = 5;

// The library takes any rate at its word and would spend its time and memory on a senseless one.
constexpr int kLowestSampleRate = 8000;
constexpr int kHighestSampleRate = 192000;

/// What the library may be given: it must never see a sample that is no number or beyond full
/// scale, where its arithmetic is not defined.
float boundedSample(float sample) {
    if (sample > 1.0F) return 1.0F;
    if (sample < -1.0F) return -1.0F;
    return sample == sample ? sample : 0.0F;
}

}  // namespace

std::unique_ptr<LAMEEncoder> LAMEEncoder::create(int sampleRate, int channels, int bitrateKbps,
                                                 Log& log) {
    if (sampleRate < kLowestSampleRate || sampleRate > kHighestSampleRate) return nullptr;
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
    bounded_.resize(samples.size());
    std::transform(samples.begin(), samples.end(), bounded_.begin(), boundedSample);
    const int bytes = lame_encode_buffer_ieee_float(
        gfp_, bounded_.data(), bounded_.data(), static_cast<int>(bounded_.size()), outBuf_.data(),
        static_cast<int>(outBuf_.size()));
    if (bytes < 0) log_.line("LAMEEncoder: encode error " + std::to_string(bytes));
    writeEncoded(bytes);
}

void LAMEEncoder::writeEncoded(int bytes) {
    if (bytes > 0) file_->write({outBuf_.data(), static_cast<std::size_t>(bytes)});
}

void LAMEEncoder::close() {
    if (!gfp_ || !file_) return;
    if (hasEncoded_)
        writeEncoded(lame_encode_flush(gfp_, outBuf_.data(), static_cast<int>(outBuf_.size())));
    file_.reset();
    lame_close(gfp_);
    gfp_ = nullptr;
}

}  // namespace sonavault
