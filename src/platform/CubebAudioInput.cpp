#include "platform/CubebAudioInput.h"

#include <utility>

#include "platform/CubebCaptureRun.h"
#include "platform/CubebDelivery.h"

namespace sonavault {

namespace {

constexpr AudioFormat kUsualFormat{48000, 2, true};
constexpr int kUsualBufferFrames = 4096;

bool canBeCaptured(const AudioFormat& format) {
    return format.sampleRate >= 1000 && format.sampleRate <= 192000 && format.channels >= 1 &&
           format.channels <= 8;
}

}  // namespace

CubebAudioInput::CubebAudioInput() = default;

CubebAudioInput::~CubebAudioInput() {
    end();
}

AudioFormat CubebAudioInput::outputFormat() {
    const auto input = device_.defaultInput();
    return input ? input->format : kUsualFormat;
}

std::string CubebAudioInput::defaultDeviceName() {
    const auto input = device_.defaultInput();
    return input ? input->name : std::string();
}

void CubebAudioInput::installTap(int bufferFrames, const AudioFormat& format, Tap tap) {
    const bool wasRunning = isRunning();
    end();
    wish_ = Wish{bufferFrames, format, std::move(tap)};
    if (!wasRunning || !canBeCaptured(format)) return;
    const auto run = std::make_shared<CubebCaptureRun>(wish_->format);
    device_.carryOn(run);
    deliver(run);
}

void CubebAudioInput::removeTap() {
    if (wish_) wish_->tap = nullptr;
    if (delivery_) delivery_->dropTap();
}

Outcome CubebAudioInput::start() {
    if (isRunning()) return Done{};
    if (!wish_) wish_ = Wish{kUsualBufferFrames, outputFormat(), nullptr};
    if (!canBeCaptured(wish_->format)) return Outcome::failure("no input has such a format");
    const auto run = std::make_shared<CubebCaptureRun>(wish_->format);
    auto begun = device_.begin(run);
    if (begun) deliver(run);
    return begun;
}

void CubebAudioInput::stop() {
    end();
}

void CubebAudioInput::deliver(std::shared_ptr<CubebCaptureRun> run) {
    delivery_ = std::make_unique<CubebDelivery>(std::move(run), wish_->bufferFrames, wish_->tap);
}

void CubebAudioInput::end() {
    device_.end();
    delivery_.reset();
}

}  // namespace sonavault
