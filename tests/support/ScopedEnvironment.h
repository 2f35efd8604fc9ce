#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace sonavault::testing {

/// One variable of the environment for the length of a test; without a value it is not set.
class ScopedEnvironment {
  public:
    ScopedEnvironment(const char* name, const std::optional<std::string>& value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        put(value);
    }
    ~ScopedEnvironment() { put(before_); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  private:
    void put(const std::optional<std::string>& value) const {
        if (value)
            setenv(name_.c_str(), value->c_str(), 1);
        else
            unsetenv(name_.c_str());
    }

    std::string name_;
    std::optional<std::string> before_;
};

}  // namespace sonavault::testing
