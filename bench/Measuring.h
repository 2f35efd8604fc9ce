#pragma once

#include <chrono>
#include <functional>
#include <string_view>

#include "platform/Log.h"

namespace sonavault {

/// What is measured may log as it pleases; nobody reads it.
class NoLog final : public Log {
  public:
    void line(std::string_view) override {}
};

/// How long `work` takes by the wall clock.
inline double secondsOf(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace sonavault
