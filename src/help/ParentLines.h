#pragma once

#include <functional>
#include <memory>
#include <string>

namespace sonavault {

/// The lines that the program which started this one writes to its standard input.
///
/// A thread of its own reads them, and may wait there for as long as the process lives; the process
/// is therefore to be ended with std::_Exit.
///
/// Thread: main.
class ParentLines {
  public:
    /// Both are called on the main thread, which runs an event loop; `onEnd` when that program is
    /// gone, or has closed its side.
    ParentLines(std::function<void(const std::string&)> onLine, std::function<void()> onEnd);

    /// Nothing is called any more.
    ~ParentLines();
    ParentLines(const ParentLines&) = delete;
    ParentLines& operator=(const ParentLines&) = delete;

  private:
    struct Shared;
    class Receiver;
    std::unique_ptr<Receiver> receiver_;
};

}  // namespace sonavault
