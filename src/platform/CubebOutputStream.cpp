#include "platform/CubebOutputStream.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace sonavault {

namespace {

constexpr char kStreamName[] = "Review";

// How much the sound system holds: about what a listener takes for at once. Half as much leaves
// gaps on two cores that four other programs keep busy.
constexpr double kHeldSeconds = 0.1;

constexpr auto kChannels = AudioOutputSound::kChannels;

// Runs on the sound system's thread: no lock, no allocation, no log line.
long giveSamples(cubeb_stream*, void* user, const void*, void* output, long frames) {
    if (output && frames > 0)
        static_cast<CubebOutputStream*>(user)->send(static_cast<float*>(output), frames);
    return frames;  // fewer would end the stream
}

void takeState(cubeb_stream*, void* user, cubeb_state state) {
    if (state == CUBEB_STATE_ERROR) static_cast<CubebOutputStream*>(user)->fail();
}

float levelOf(double squares) {
    const double mean = squares / static_cast<double>(OutputMeter::kBufferFrames);
    return decibelsFullScale(static_cast<float>(std::sqrt(mean)));
}

}  // namespace

bool OutputMeter::add(const float* samples, FrameCount frames) {
    bool full = false;
    for (FrameCount i = 0; i < frames; ++i) {
        leftSquares_ += static_cast<double>(samples[kChannels * i]) * samples[kChannels * i];
        rightSquares_ +=
            static_cast<double>(samples[kChannels * i + 1]) * samples[kChannels * i + 1];
        if (++filled_ < kBufferFrames) continue;
        levels_ = {levelOf(leftSquares_), levelOf(rightSquares_)};
        leftSquares_ = rightSquares_ = 0;
        filled_ = 0;
        full = true;
    }
    return full;
}

void CubebOutputStream::send(float* out, FrameCount frames) {
    run_->asked();
    FrameCount sent = 0;
    AudioOutputSound* const sound = run_->borrow();
    if (sound && sound->sampleRate == sampleRate_) sent = sound->take(out, frames);
    run_->giveBack();
    std::fill(out + sent * kChannels, out + frames * kChannels, 0.0F);
    if (meter_.add(out, frames)) run_->setLevels(meter_.levels());
}

void CubebOutputStream::StopAndDestroy::operator()(cubeb_stream* stream) const {
    cubeb_stream_stop(stream);
    cubeb_stream_destroy(stream);
}

Result<std::unique_ptr<CubebOutputStream>> CubebOutputStream::open(
    std::shared_ptr<CubebOutputRun> run, double sampleRate, const std::string& backend) {
    using Opened = Result<std::unique_ptr<CubebOutputStream>>;
    auto context = CubebContext::open();
    if (!context) return Opened::failure(context.error());
    if (!backend.empty() && context.value()->backend() != backend)
        return Opened::failure("the sound server is gone");
    std::unique_ptr<CubebOutputStream> stream(
        new CubebOutputStream(std::move(run), sampleRate, std::move(context.value())));
    if (auto begun = stream->begin(); !begun) return Opened::failure(begun.error());
    return stream;
}

Outcome CubebOutputStream::begin() {
    cubeb_stream_params params{};
    params.format = CUBEB_SAMPLE_FLOAT32NE;
    params.rate = static_cast<std::uint32_t>(std::lround(sampleRate_));
    params.channels = kChannels;
    params.layout = CUBEB_LAYOUT_STEREO;
    params.prefs = CUBEB_STREAM_PREF_NONE;
    const auto held = static_cast<std::uint32_t>(std::lround(sampleRate_ * kHeldSeconds));

    cubeb_stream* stream = nullptr;
    int code = cubeb_stream_init(context_->get(), &stream, kStreamName, nullptr, nullptr, nullptr,
                                 &params, held, giveSamples, takeState, this);
    if (code == CUBEB_OK) {
        stream_.reset(stream);
        code = cubeb_stream_start(stream);
    }
    if (code == CUBEB_OK) return Done{};
    return Outcome::failure("no output device can be opened (" + context_->backend() + ")");
}

}  // namespace sonavault
