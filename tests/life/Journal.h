#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace sonavault::testing {

/// What befell the station, in order, for the person who has to find out why a life went wrong.
class Journal {
  public:
    /// `stationTime`: what the station's clock shows. Units: seconds since 1970
    void note(double stationTime, const std::string& what);

    /// The last `count` lines.
    std::string last(std::size_t count) const;
    /// What was noted from a little before one moment of the station's clock to a little after
    /// another.
    std::string around(double from, double to) const;

  private:
    struct Entry {
        double stationTime = 0;
        std::string line;
    };

    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::vector<Entry> entries_;
};

}  // namespace sonavault::testing
