#include "review/DayIndex.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

namespace sonavault {
namespace {

using Made = Result<DayIndex::Ready>;

Made shared(Result<Mp3FrameIndex> index) {
    if (!index) return Made::failure(index.error());
    return DayIndex::Ready(std::make_shared<const Mp3FrameIndex>(std::move(index.value())));
}

/// A day too large for the memory that is left has no index, and those who wait are told.
Made madeSafely(const DayIndex::Make& make, const std::stop_token& stop) {
    try {
        return shared(make(stop));
    } catch (const std::exception& error) {
        return Made::failure(error.what());
    }
}

}  // namespace

/// What the thread that makes it and those who wait share.
struct DayIndex::Making {
    void tell(Made made) {
        const std::scoped_lock lock(mutex);
        result = std::move(made);
        changed.notify_all();
    }

    std::mutex mutex;
    std::condition_variable_any changed;
    std::optional<Made> result;  // guarded by mutex
};

DayIndex::DayIndex(Mp3FrameIndex index) : making_(std::make_shared<Making>()) {
    making_->tell(shared(std::move(index)));
}

DayIndex::DayIndex(const Make& make) : making_(std::make_shared<Making>()) {
    try {
        job_ = std::make_unique<BackgroundJob>(
            "day-index",
            [make, making = making_](const std::stop_token& stop) {
                making->tell(madeSafely(make, stop));
            },
            BackgroundJob::Priority::asAnyOther);
    } catch (const std::system_error&) {
        making_->tell(madeSafely(make, {}));
    }
}

DayIndex::~DayIndex() {
    if (job_) job_->leave();
}

DayIndex::Ready DayIndex::ifReady() const {
    const std::scoped_lock lock(making_->mutex);
    return making_->result && *making_->result ? making_->result->value() : nullptr;
}

Made DayIndex::await(const std::stop_token& stop) const {
    std::unique_lock lock(making_->mutex);
    const bool made =
        making_->changed.wait(lock, stop, [this] { return making_->result.has_value(); });
    return made ? *making_->result : Made::failure("Stopped");
}

}  // namespace sonavault
