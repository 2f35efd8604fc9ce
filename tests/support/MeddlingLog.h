#pragma once

#include <functional>
#include <string_view>
#include <utility>

#include "support/RecordedLog.h"

namespace sonavault::testing {

/// A log that does something at its first line, as another program might at any moment.
class MeddlingLog final : public Log {
  public:
    MeddlingLog(RecordedLog& log, std::function<void()> meddle)
        : log_(log), meddle_(std::move(meddle)) {}
    void line(std::string_view text) override {
        log_.line(text);
        if (const auto meddle = std::exchange(meddle_, nullptr)) meddle();
    }

  private:
    RecordedLog& log_;
    std::function<void()> meddle_;
};

}  // namespace sonavault::testing
