#pragma once

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
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

/// The same of another program's run; nothing when it failed, so that no ratio is made of that.
inline std::optional<double> secondsOfCommand(const std::string& command) {
    bool succeeded = false;
    const double took = secondsOf([&] { succeeded = std::system(command.c_str()) == 0; });
    return succeeded ? std::optional(took) : std::nullopt;
}

inline std::optional<double> secondsOfCat(const std::filesystem::path& file) {
    return secondsOfCommand("cat '" + file.string() + "' > /dev/null");
}

}  // namespace sonavault
