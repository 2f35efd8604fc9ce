#include "platform/CubebOutput.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "platform/CubebOutputStream.h"
#include "platform/CubebPatience.h"

namespace sonavault {

namespace {

using SteadyClock = std::chrono::steady_clock;

// The rate of the first stream, before any sound has one.
constexpr double kUsualRate = 48000;

constexpr double kLeastRate = 1000;
constexpr double kHighestRate = 192000;

}  // namespace

/// What the control thread and the device thread share, and the device thread's own work.
class CubebOutput::Worker {
  public:
    explicit Worker(std::shared_ptr<CubebOutputRun> run) : run_(std::move(run)) {}

    // Control thread
    Outcome begin();
    void play(double sampleRate);
    void rest();
    void quit();

    // Device thread
    void work();

  private:
    /// What the control thread wants of the device; each change of mind has the next number.
    struct Wish {
        std::uint64_t number = 0;
        double sampleRate = 0;  // 0: no stream
        bool plays = false;     // the device is tried again until it works
    };

    std::optional<Wish> awaitWish();
    void follow(const Wish& wish);
    void tryToOpen(const Wish& wish);
    void report(const Wish& wish, const Outcome& outcome);
    bool isLost() const { return run_->failed || run_->quietFor() >= kCubebQuietFor; }

    const std::shared_ptr<CubebOutputRun> run_;
    std::mutex mutex_;
    std::condition_variable changed_;

    // Under mutex_, which is never held over a call into the sound system
    bool quit_ = false;
    Wish wish_;
    bool answerAwaited_ = false;
    std::optional<Outcome> answer_;

    // Device thread only
    std::unique_ptr<CubebOutputStream> stream_;
    std::string backend_;
    std::uint64_t followed_ = 0;
    SteadyClock::time_point nextTry_;
};

Outcome CubebOutput::Worker::begin() {
    std::unique_lock lock(mutex_);
    if (wish_.sampleRate > 0) return Done{};
    wish_ = {wish_.number + 1, kUsualRate, false};
    answer_.reset();
    answerAwaited_ = true;
    changed_.notify_all();
    changed_.wait_for(lock, kCubebAnswerWithin, [this] { return answer_.has_value(); });
    answerAwaited_ = false;
    return answer_.value_or(Done{});
}

void CubebOutput::Worker::play(double sampleRate) {
    const std::scoped_lock lock(mutex_);
    wish_ = {wish_.number + 1, sampleRate, true};
    changed_.notify_all();
}

void CubebOutput::Worker::rest() {
    const std::scoped_lock lock(mutex_);
    wish_ = {wish_.number + 1, wish_.sampleRate, false};
    changed_.notify_all();
}

void CubebOutput::Worker::quit() {
    const std::scoped_lock lock(mutex_);
    quit_ = true;
    changed_.notify_all();
}

void CubebOutput::Worker::work() {
    while (const auto wish = awaitWish()) follow(*wish);
    stream_.reset();
}

std::optional<CubebOutput::Worker::Wish> CubebOutput::Worker::awaitWish() {
    std::unique_lock lock(mutex_);
    const bool tends = stream_ || wish_.plays;
    changed_.wait_for(lock, tends ? SteadyClock::duration(kCubebLookEvery) : kCubebUntilCalled,
                      [this] { return quit_ || wish_.number != followed_; });
    if (quit_) return std::nullopt;
    return wish_;
}

void CubebOutput::Worker::follow(const Wish& wish) {
    if (wish.number != followed_) {
        followed_ = wish.number;
        nextTry_ = SteadyClock::now();
        if (!stream_) backend_.clear();
    }
    const bool lost = stream_ && isLost();
    if (stream_ && (lost || stream_->sampleRate() != wish.sampleRate)) stream_.reset();
    if (lost && !wish.plays) report(wish, Outcome::failure("the output device is gone"));
    if (!stream_ && (wish.plays || !lost) && SteadyClock::now() >= nextTry_) tryToOpen(wish);
}

void CubebOutput::Worker::tryToOpen(const Wish& wish) {
    if (wish.sampleRate == 0) return;
    run_->failed = false;
    run_->setLevels({});
    auto opened = CubebOutputStream::open(run_, wish.sampleRate, backend_);
    run_->asked();
    nextTry_ = SteadyClock::now() + kCubebTryEvery;
    if (!opened) {
        report(wish, Outcome::failure(opened.error()));
        return;
    }
    stream_ = std::move(opened.value());
    // While the server restarts, the system's bare devices would take the hardware away from it.
    backend_ = stream_->backend();
    report(wish, Done{});
}

void CubebOutput::Worker::report(const Wish& wish, const Outcome& outcome) {
    const std::scoped_lock lock(mutex_);
    // With nothing to be heard, the device is left alone until there is.
    const bool isCurrent = wish.number == wish_.number;
    if (!outcome && !wish.plays && isCurrent) wish_.sampleRate = 0;
    if (answerAwaited_ && !answer_) answer_ = outcome;
    changed_.notify_all();
}

CubebOutput::CubebOutput()
    : run_(std::make_shared<CubebOutputRun>()),
      worker_(std::make_shared<Worker>(run_)),
      thread_("review-device", [worker = worker_] { worker->work(); }) {}

CubebOutput::~CubebOutput() {
    run_->use(nullptr);
    worker_->quit();
    thread_.endWithin(kCubebAnswerWithin);
}

Outcome CubebOutput::start() {
    return worker_->begin();
}

void CubebOutput::play(std::shared_ptr<AudioOutputSound> sound) {
    const double rate = sound->sampleRate;
    if (!(rate >= kLeastRate && rate <= kHighestRate)) return stop();
    run_->use(std::move(sound));
    worker_->play(rate);
}

void CubebOutput::stop() {
    run_->use(nullptr);
    worker_->rest();
}

}  // namespace sonavault
