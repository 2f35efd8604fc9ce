#pragma once

#include <memory>
#include <string>
#include <vector>

namespace sonavault::automation {

/// The lines that come in on standard input, without anybody waiting for them.
class CommandReader {
  public:
    CommandReader();

    /// The lines that came since the last call.
    std::vector<std::string> take();

  private:
    struct Inbox;
    std::shared_ptr<Inbox> inbox_;
};

}  // namespace sonavault::automation
