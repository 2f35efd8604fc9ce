#pragma once

#include <string>

namespace sonavault::testing {

/// Announces that Qt may warn, for the length of a test. A warning that nobody announced fails the
/// test that runs.
///
/// Thread: any; the warning may come on any other.
class ExpectedQtWarnings {
  public:
    /// Warnings that contain `part`.
    explicit ExpectedQtWarnings(const std::string& part);
    ~ExpectedQtWarnings();
    ExpectedQtWarnings(const ExpectedQtWarnings&) = delete;
    ExpectedQtWarnings& operator=(const ExpectedQtWarnings&) = delete;

    /// How many came so far.
    int count() const;

  private:
    const int id_;
};

/// From now on, makes Qt's warnings known to the tests.
void watchQtWarnings();

}  // namespace sonavault::testing
