#include "platform/CubebDevice.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <utility>

#include "platform/CubebPatience.h"

namespace sonavault {

namespace {

using SteadyClock = std::chrono::steady_clock;

struct Question {
    bool answered = false;
    std::optional<CubebDefaultInput> answer;
};

}  // namespace

/// What the control thread and the device thread share, and the device thread's own work.
class CubebDevice::Worker {
  public:
    // Control thread
    std::optional<CubebDefaultInput> askDefaultInput();
    bool lookForInput();
    Outcome begin(std::shared_ptr<CubebCaptureRun> run);
    void want(std::shared_ptr<CubebCaptureRun> run);
    void quit();

    // Device thread
    void work();

  private:
    struct Order {
        bool quit = false;
        std::shared_ptr<CubebCaptureRun> wanted;
        std::shared_ptr<Question> question;
    };

    Order awaitOrder();
    bool isStuck() const { return beginUnanswered_ || (unanswered_ && !unanswered_->answered); }
    void answer(Question& question);
    void follow(const std::shared_ptr<CubebCaptureRun>& wanted);
    void tend();
    bool isLost();
    void tryToOpen();
    void report(const Outcome& outcome);

    std::mutex mutex_;
    std::condition_variable changed_;

    // Under mutex_, which is never held over a call into the sound system
    bool quit_ = false;
    std::deque<std::shared_ptr<Question>> questions_;
    std::shared_ptr<Question> look_;
    std::shared_ptr<Question> unanswered_;  // whoever asked it waited in vain
    std::shared_ptr<CubebCaptureRun> wanted_;
    bool beginAwaited_ = false;
    bool beginUnanswered_ = false;  // until the device thread is back from the sound system
    std::optional<Outcome> beginOutcome_;

    // Device thread only
    std::shared_ptr<CubebCaptureRun> run_;
    std::unique_ptr<CubebCapture> capture_;
    std::string backend_;
    SteadyClock::time_point nextTry_;
    SteadyClock::time_point lastSamples_;
    FrameCount samplesSeen_ = 0;
};

std::optional<CubebDefaultInput> CubebDevice::Worker::askDefaultInput() {
    const auto question = std::make_shared<Question>();
    std::unique_lock lock(mutex_);
    if (isStuck()) return std::nullopt;
    questions_.push_back(question);
    changed_.notify_all();
    if (!changed_.wait_for(lock, kCubebAnswerWithin, [&] { return question->answered; }))
        unanswered_ = question;
    return question->answer;
}

bool CubebDevice::Worker::lookForInput() {
    std::scoped_lock lock(mutex_);
    if (look_ && !look_->answered) return false;
    const bool isThere = look_ && look_->answer;
    look_ = std::make_shared<Question>();
    questions_.push_back(look_);
    changed_.notify_all();
    return isThere;
}

Outcome CubebDevice::Worker::begin(std::shared_ptr<CubebCaptureRun> run) {
    std::unique_lock lock(mutex_);
    wanted_ = std::move(run);
    beginOutcome_.reset();
    beginAwaited_ = true;
    changed_.notify_all();
    if (!isStuck())
        beginUnanswered_ = !changed_.wait_for(lock, kCubebAnswerWithin,
                                              [this] { return beginOutcome_.has_value(); });
    beginAwaited_ = false;
    return beginOutcome_.value_or(Done{});
}

void CubebDevice::Worker::want(std::shared_ptr<CubebCaptureRun> run) {
    std::scoped_lock lock(mutex_);
    wanted_ = std::move(run);
    changed_.notify_all();
}

void CubebDevice::Worker::quit() {
    const std::scoped_lock lock(mutex_);
    quit_ = true;
    changed_.notify_all();
}

void CubebDevice::Worker::work() {
    for (Order order = awaitOrder(); !order.quit; order = awaitOrder()) {
        follow(order.wanted);
        if (order.question)
            answer(*order.question);
        else
            tend();
    }
    follow(nullptr);
}

CubebDevice::Worker::Order CubebDevice::Worker::awaitOrder() {
    std::unique_lock lock(mutex_);
    beginUnanswered_ = false;
    const auto patience = run_ ? SteadyClock::duration(kCubebLookEvery) : kCubebUntilCalled;
    changed_.wait_for(lock, patience,
                      [this] { return quit_ || !questions_.empty() || wanted_ != run_; });
    Order order{quit_, wanted_, nullptr};
    if (!questions_.empty()) {
        order.question = questions_.front();
        questions_.pop_front();
    }
    return order;
}

void CubebDevice::Worker::answer(Question& question) {
    std::optional<CubebDefaultInput> input;
    if (capture_) {
        input = capture_->context().defaultInput();
    } else if (auto context = CubebContext::open()) {
        input = context.value()->defaultInput();
    }
    std::scoped_lock lock(mutex_);
    question.answer = std::move(input);
    question.answered = true;
    changed_.notify_all();
}

void CubebDevice::Worker::follow(const std::shared_ptr<CubebCaptureRun>& wanted) {
    if (wanted == run_) return;
    capture_.reset();
    backend_.clear();
    run_ = wanted;
    nextTry_ = SteadyClock::now();
}

void CubebDevice::Worker::tend() {
    if (!run_) return;
    if (capture_ && isLost()) capture_.reset();
    if (!capture_ && SteadyClock::now() >= nextTry_) tryToOpen();
}

bool CubebDevice::Worker::isLost() {
    const auto now = SteadyClock::now();
    const auto offered = run_->ring.offered();
    if (offered != samplesSeen_) {
        samplesSeen_ = offered;
        lastSamples_ = now;
    }
    return run_->failed || now - lastSamples_ >= kCubebQuietFor;
}

void CubebDevice::Worker::tryToOpen() {
    run_->failed = false;
    auto opened = CubebCapture::open(run_, backend_);
    lastSamples_ = SteadyClock::now();
    nextTry_ = lastSamples_ + kCubebTryEvery;
    if (!opened) {
        report(Outcome::failure(opened.error()));
        return;
    }
    capture_ = std::move(opened.value());
    // While the server restarts, the system's bare devices would take the hardware away from it.
    backend_ = capture_->context().backend();
    report(Done{});
}

void CubebDevice::Worker::report(const Outcome& outcome) {
    std::scoped_lock lock(mutex_);
    if (!beginAwaited_ || beginOutcome_ || wanted_ != run_) return;
    beginOutcome_ = outcome;
    if (!outcome) wanted_.reset();
    changed_.notify_all();
}

CubebDevice::CubebDevice()
    : worker_(std::make_shared<Worker>()),
      thread_("line-device", [worker = worker_] { worker->work(); }) {}

CubebDevice::~CubebDevice() {
    worker_->quit();
    thread_.endWithin(kCubebAnswerWithin);
}

std::optional<CubebDefaultInput> CubebDevice::defaultInput() {
    return worker_->askDefaultInput();
}

bool CubebDevice::lookForInput() {
    return worker_->lookForInput();
}

Outcome CubebDevice::begin(std::shared_ptr<CubebCaptureRun> run) {
    return worker_->begin(std::move(run));
}

void CubebDevice::carryOn(std::shared_ptr<CubebCaptureRun> run) {
    worker_->want(std::move(run));
}

void CubebDevice::end() {
    worker_->want(nullptr);
}

}  // namespace sonavault
