#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/Clock.h"

namespace sonavault::automation {

/// An endless mono sound, the same at every run that is made with the same settings.
class Signal {
  public:
    virtual ~Signal() = default;

    /// Fills `samples` with what follows. `first` is the wall-clock moment of the first of them,
    /// which matters to a signal that keeps the clock.
    virtual void fill(std::span<float> samples, WallTime first) = 0;
};

enum class SignalKind { programme, tone, silence, noise, toneBursts, clockChords };

struct SignalSettings {
    SignalKind kind = SignalKind::programme;
    int sampleRate = 44100;   ///< Units: hertz
    double frequency = 1000;  ///< of a tone. Units: hertz. Range: up to half the sample rate
    double level = -20;       ///< root mean square while it sounds. Units: dBFS. Range: -120 to -6
    unsigned seed = 1;        ///< another seed, another programme
};

/// "programme", "tone", "silence", "noise", "tone-bursts" or "clock-chords".
std::optional<SignalKind> signalKindNamed(const std::string& name);

std::unique_ptr<Signal> makeSignal(const SignalSettings& settings);

/// The factor on a signal of root mean square 1 that gives `dBFS`.
float gainFromDb(double dBFS);

}  // namespace sonavault::automation
