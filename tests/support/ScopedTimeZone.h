#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace sonavault::testing {

/// The machine's time zone for the length of a test.
class ScopedTimeZone {
  public:
    explicit ScopedTimeZone(const char* zone) {
        if (const char* before = std::getenv("TZ")) before_ = before;
        setenv("TZ", zone, 1);
        tzset();
    }
    ~ScopedTimeZone() {
        if (before_)
            setenv("TZ", before_->c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }
    ScopedTimeZone(const ScopedTimeZone&) = delete;
    ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

  private:
    std::optional<std::string> before_;
};

}  // namespace sonavault::testing
