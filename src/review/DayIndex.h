#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include "platform/BackgroundJob.h"
#include "platform/Mp3FrameIndex.h"
#include "platform/Result.h"

namespace sonavault {

/// The frame index of a day's file, which may still be in the making: to walk a whole day can take
/// seconds when the disk has to be asked for all of it.
///
/// Thread: any. Destruction gives up an index in the making and waits for nobody.
class DayIndex {
  public:
    using Ready = std::shared_ptr<const Mp3FrameIndex>;

    /// One that is there.
    explicit DayIndex(Mp3FrameIndex index);

    /// What `make` gives, on a thread of its own from now on; where none can be had, it is called
    /// here. It may touch only what it shares in owning.
    using Make = std::function<Result<Mp3FrameIndex>(const std::stop_token&)>;
    explicit DayIndex(const Make& make);

    ~DayIndex();
    DayIndex(const DayIndex&) = delete;
    DayIndex& operator=(const DayIndex&) = delete;

    /// Null while it is in the making, and when it can't be made.
    Ready ifReady() const;

    /// Waits until it is made. Errors: words, also when `stop` was asked for meanwhile.
    Result<Ready> await(const std::stop_token& stop) const;

  private:
    struct Making;

    const std::shared_ptr<Making> making_;
    std::unique_ptr<BackgroundJob> job_;
};

}  // namespace sonavault
