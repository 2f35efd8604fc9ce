#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace sonavault::testing {

/// What crashes may leave in a station's folder of recordings, and what a sweep has to make of it.
class Leftovers {
  public:
    /// `today`: the date on which the sweep runs, "yyyy-MM-dd".
    explicit Leftovers(std::string today) : today_(std::move(today)) {}

    /// Fills `folder`, which is made.
    void layOut(const std::filesystem::path& folder) const;

    /// Fails the test for each file that is not as it should be after one sweep, and for each line
    /// beginning "Sonavault recovery: " that is missing from `log` or should not be there.
    void expectSwept(const std::filesystem::path& folder,
                     const std::vector<std::string>& log) const;

  private:
    std::set<std::string> expectedLines() const;

    const std::string today_;
};

}  // namespace sonavault::testing
