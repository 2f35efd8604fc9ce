#include "review/PlaybackFeeder.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <utility>
#include <vector>

namespace sonavault {

namespace {

constexpr std::chrono::milliseconds kEndWithin{900};

// A decoder hands out a frame of the file at a time, which is about as much.
constexpr FrameCount kPieceFrames = 1152;

struct Job {
    std::shared_ptr<const PlaybackSource> source;
    FrameCount from;
    std::shared_ptr<AudioOutputSound> sound;
    std::stop_source over;

    bool isOver() const { return over.stop_requested(); }

    Job(std::shared_ptr<const PlaybackSource> ofSource, FrameCount fromFrame,
        std::shared_ptr<AudioOutputSound> intoSound)
        : source(std::move(ofSource)), from(fromFrame), sound(std::move(intoSound)) {}
};

}  // namespace

/// What the control thread and the feeding thread share, and the latter's own work.
class PlaybackFeeder::Worker {
  public:
    // Control thread
    void take(std::shared_ptr<Job> job);
    void quit();

    // Feeding thread
    void work();

  private:
    bool awaitNews();
    void serve(Job& job);
    bool openFileOf(const Job& job);
    void interleave(const DecodedAudio& piece);
    void push(Job& job, FrameCount frames) const;

    std::mutex mutex_;
    std::condition_variable changed_;

    // Under mutex_, which is never held while a file is read
    bool quit_ = false;
    bool hasNews_ = false;
    std::shared_ptr<Job> job_;

    // Feeding thread only
    std::shared_ptr<Job> served_;
    std::shared_ptr<const PlaybackSource> source_;  // of the decoder
    std::unique_ptr<AudioDecoder> decoder_;
    std::vector<float> samples_;
};

void PlaybackFeeder::Worker::take(std::shared_ptr<Job> job) {
    const std::scoped_lock lock(mutex_);
    if (job_) {
        job_->over.request_stop();
        job_->sound->wake();
    }
    job_ = std::move(job);
    hasNews_ = true;
    changed_.notify_all();
}

void PlaybackFeeder::Worker::quit() {
    take(nullptr);
    const std::scoped_lock lock(mutex_);
    quit_ = true;
    changed_.notify_all();
}

void PlaybackFeeder::Worker::work() {
    while (awaitNews())
        if (served_) {
            serve(*served_);
        } else {
            decoder_.reset();
            source_.reset();
        }
    decoder_.reset();
}

/// False when there will be none.
bool PlaybackFeeder::Worker::awaitNews() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return quit_ || hasNews_; });
    hasNews_ = false;
    served_ = job_;
    return !quit_;
}

void PlaybackFeeder::Worker::serve(Job& job) {
    if (!openFileOf(job)) return;
    decoder_->seek(job.from);
    while (!job.isOver()) {
        const DecodedAudio piece = decoder_->next(kPieceFrames);
        if (piece.frames == 0) return;
        interleave(piece);
        push(job, piece.frames);
    }
}

bool PlaybackFeeder::Worker::openFileOf(const Job& job) {
    if (decoder_ && source_ == job.source) return true;
    decoder_.reset();
    source_ = job.source;
    auto opened = job.source->openDecoder(job.over.get_token());
    if (opened) decoder_ = std::move(opened.value());
    return decoder_ != nullptr;
}

void PlaybackFeeder::Worker::interleave(const DecodedAudio& piece) {
    const auto frames = static_cast<std::size_t>(piece.frames);
    const float* const left = piece.planes[0];
    const float* const right = decoder_->channels() > 1 ? piece.planes[1] : left;
    samples_.resize(2 * frames);
    for (std::size_t i = 0; i < frames; ++i) {
        samples_[2 * i] = left[i];
        samples_[2 * i + 1] = right[i];
    }
}

void PlaybackFeeder::Worker::push(Job& job, FrameCount frames) const {
    FrameCount pushed = job.sound->push(samples_.data(), frames);
    while (pushed < frames && !job.isOver()) {
        job.sound->awaitRoom();
        pushed += job.sound->push(samples_.data() + 2 * pushed, frames - pushed);
    }
}

PlaybackFeeder::PlaybackFeeder()
    : worker_(std::make_shared<Worker>()),
      thread_("playback-feed", [worker = worker_] { worker->work(); }) {}

PlaybackFeeder::~PlaybackFeeder() {
    worker_->quit();
    thread_.endWithin(kEndWithin);
}

void PlaybackFeeder::feed(std::shared_ptr<const PlaybackSource> source, FrameCount from,
                          std::shared_ptr<AudioOutputSound> sound) {
    worker_->take(std::make_shared<Job>(std::move(source), from, std::move(sound)));
}

void PlaybackFeeder::stop() {
    worker_->take(nullptr);
}

}  // namespace sonavault
