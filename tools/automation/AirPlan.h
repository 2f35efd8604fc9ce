#pragma once

#include <optional>
#include <string>
#include <vector>

namespace sonavault::automation {

/// What the sender does at a moment.
enum class AirState {
    onAir,
    stalled,  ///< connected, but nothing is sent
    dropped   ///< not connected
};

/// A stretch in which the air does not reach the other side. Units: seconds since the program
/// began.
struct Interruption {
    AirState state = AirState::stalled;
    double from = 0;
    double duration = 0;
};

/// "12.5:3": from second 12.5 for 3 seconds. Nothing when it does not read so.
std::optional<Interruption> parseInterruption(AirState state, const std::string& text);

/// When the air is interrupted, as asked for beforehand and while it runs.
class AirPlan {
  public:
    void add(const Interruption& interruption) { interruptions_.push_back(interruption); }

    /// Ends what is going on at `second`; what lies ahead stays.
    void resumeAt(double second);

    /// A drop goes before a stall where they overlap.
    AirState at(double second) const;

  private:
    std::vector<Interruption> interruptions_;
};

/// A line that a person types while the sender runs.
struct Command {
    enum class Kind { drop, stall, resume, quit };
    Kind kind = Kind::quit;
    double seconds = 0;  ///< of a stall
};

/// "drop", "stall 5", "resume" or "quit"; nothing for any other line.
std::optional<Command> parseCommand(const std::string& line);

}  // namespace sonavault::automation
