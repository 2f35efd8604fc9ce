#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "life/DayCheck.h"

namespace sonavault::testing {

/// Keeps account of the air that reached the recorder, and of where each day's file must have it.
///
/// Audio is placed at the end of the file, which is filled up to the clock when it has fallen
/// behind, and left alone when it is ahead. So where a stretch of air stands follows from where the
/// one before it ended. Moments are the station's, in seconds since 1970.
class AirBook {
  public:
    /// A day's file begins with its frame 0 at `startedAt`.
    void beginDay(const std::string& date, double startedAt);

    /// From `moment` on the recording is as it should be. `late`: how late the buffer may have been
    /// that closed the gap.
    void open(double moment, bool tellsTime = true, double late = 0);

    /// The air stopped at `moment`, or the clock stands there before it is set. What was heard in
    /// the last `unsure` seconds may be lost or not.
    void interrupt(double moment, double unsure);

    /// Air comes again from `moment` on. `slack`: how much longer or shorter the file may be than
    /// what went into it. `misplaced`: how much air may stand in the outage, having come when the
    /// file was behind the clock.
    void resume(double moment, double slack, double misplaced = 0);

    /// How far behind the clock the file was at the last resume(), and how far ahead of it the file
    /// has been since. Units: seconds
    double gap() const { return gap_; }
    double ahead() const { return ahead_; }

    /// The machine stood still for so long while there was air: nobody can tell where that stands.
    void excuse(double moment, double length);

    bool isOpen() const { return open_.has_value(); }
    const std::string& date() const { return date_; }
    const std::map<std::string, std::vector<AirStretch>>& days() const { return days_; }

    /// All stretches together, and what was excused. Units: seconds
    double heard() const;
    double excused() const { return excused_; }

  private:
    std::map<std::string, std::vector<AirStretch>> days_;
    std::string date_;
    std::optional<AirStretch> open_;
    double fileEnd_ = 0;
    double ahead_ = 0;
    double slack_ = 0;
    double gap_ = 0;
    double silent_ = 0;
    double excused_ = 0;
};

/// How much of an outage of that length must be digital silence in the file: while it catches up,
/// each second of silence is followed by a short piece of air, which an encoder smears.
/// Units: seconds
double surelySilent(double outage);

}  // namespace sonavault::testing
