#include "platform/CubebAudioInput.h"

#include <system_error>
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
    if (deliver(run)) device_.carryOn(run);
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
    // The delivery first: a machine that has no thread left must not leave the device open.
    if (auto delivering = deliver(run); !delivering) return delivering;
    auto begun = device_.begin(run);
    if (!begun) delivery_.reset();
    return begun;
}

void CubebAudioInput::stop() {
    end();
}

Outcome CubebAudioInput::deliver(std::shared_ptr<CubebCaptureRun> run) {
    try {
        delivery_ =
            std::make_unique<CubebDelivery>(std::move(run), wish_->bufferFrames, wish_->tap);
        return Done{};
    } catch (const std::system_error& error) {
        return Outcome::failure(error.code().message());
    }
}

void CubebAudioInput::end() {
    device_.end();
    delivery_.reset();
}

}  // namespace sonavault
