#include "automation/Signal.h"

#include <cmath>

#include "automation/ClockChords.h"
#include "automation/Programme.h"
#include "automation/TestSignals.h"

namespace sonavault::automation {

std::optional<SignalKind> signalKindNamed(const std::string& name) {
    if (name == "programme") return SignalKind::programme;
    if (name == "tone") return SignalKind::tone;
    if (name == "silence") return SignalKind::silence;
    if (name == "noise") return SignalKind::noise;
    if (name == "tone-bursts") return SignalKind::toneBursts;
    if (name == "clock-chords") return SignalKind::clockChords;
    return std::nullopt;
}

std::unique_ptr<Signal> makeSignal(const SignalSettings& settings) {
    switch (settings.kind) {
        case SignalKind::programme:
            return std::make_unique<Programme>(settings);
        case SignalKind::tone:
            return std::make_unique<Tone>(settings);
        case SignalKind::noise:
            return std::make_unique<Noise>(settings);
        case SignalKind::toneBursts:
            return std::make_unique<ToneBursts>(settings);
        case SignalKind::clockChords:
            return std::make_unique<ClockChords>(settings);
        case SignalKind::silence:
            break;
    }
    return std::make_unique<Silence>();
}

float gainFromDb(double dBFS) {
    return static_cast<float>(std::pow(10.0, dBFS / 20.0));
}

}  // namespace sonavault::automation
