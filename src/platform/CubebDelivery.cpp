#include "platform/CubebDelivery.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

#include "platform/ThisThread.h"

namespace sonavault {

namespace {

using SteadyClock = std::chrono::steady_clock;

// Only how soon drying up is noticed: arriving samples wake the thread at once.
constexpr std::chrono::milliseconds kLookEvery{250};

// Longer than any hiccup of a loaded machine whose samples are merely late.
constexpr std::chrono::seconds kDriedUpAfter{1};

}  // namespace

CubebDelivery::CubebDelivery(std::shared_ptr<CubebCaptureRun> run, int blockFrames,
                             AudioInput::Tap tap)
    : run_(std::move(run)), blockFrames_(std::max(blockFrames, 1)) {
    if (tap) tap_ = std::make_shared<const AudioInput::Tap>(std::move(tap));
    const auto channels = static_cast<std::size_t>(run_->format.channels);
    block_.resize(static_cast<std::size_t>(blockFrames_) * channels);
    if (run_->format.interleaved) {
        planes_.push_back(block_.data());
    } else {
        separated_.resize(block_.size());
        for (std::size_t c = 0; c < channels; ++c)
            planes_.push_back(separated_.data() + c * static_cast<std::size_t>(blockFrames_));
    }
    thread_ = std::thread([this] {
        nameThisThread("line-delivery");
        deliverUntilStopped();
    });
}

CubebDelivery::~CubebDelivery() {
    stopping_ = true;
    run_->arrived.release();
    thread_.join();
}

void CubebDelivery::dropTap() {
    std::unique_lock lock(mutex_);
    tap_.reset();
    tapReturned_.wait(lock, [this] { return !tapRunning_; });
}

void CubebDelivery::deliverUntilStopped() {
    auto lastArrival = SteadyClock::now();
    while (!stopping_) {
        // A time-out is no answer by itself: what counts is whether the ring holds anything.
        (void)run_->arrived.try_acquire_for(kLookEvery);
        if (takeWhatArrived())
            lastArrival = SteadyClock::now();
        else if (filled_ > 0 && SteadyClock::now() - lastArrival >= kDriedUpAfter)
            completeWithSilence();
    }
}

bool CubebDelivery::takeWhatArrived() {
    bool any = false;
    while (!stopping_) {
        float* room = block_.data() + filled_ * run_->format.channels;
        const FrameCount taken = run_->ring.pop(room, blockFrames_ - filled_);
        if (taken == 0) break;
        any = true;
        filled_ += taken;
        if (filled_ == blockFrames_) handOut();
    }
    return any;
}

void CubebDelivery::completeWithSilence() {
    std::fill(block_.begin() + static_cast<std::ptrdiff_t>(filled_ * run_->format.channels),
              block_.end(), 0.0F);
    handOut();
}

void CubebDelivery::handOut() {
    filled_ = 0;
    std::shared_ptr<const AudioInput::Tap> tap;
    {
        std::scoped_lock lock(mutex_);
        tap = tap_;
        tapRunning_ = tap != nullptr;
    }
    if (!tap) return;
    if (!run_->format.interleaved) separateChannels();
    (*tap)(AudioBufferView{run_->format, blockFrames_, planes_.data()});
    // What the tap holds must be gone, too, once dropTap() returns.
    tap.reset();
    std::scoped_lock lock(mutex_);
    tapRunning_ = false;
    tapReturned_.notify_all();
}

void CubebDelivery::separateChannels() {
    const auto channels = planes_.size();
    const auto frames = static_cast<std::size_t>(blockFrames_);
    for (std::size_t c = 0; c < channels; ++c)
        for (std::size_t i = 0; i < frames; ++i)
            separated_[c * frames + i] = block_[i * channels + c];
}

}  // namespace sonavault
