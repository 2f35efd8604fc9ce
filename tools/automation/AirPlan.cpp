#include "automation/AirPlan.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

namespace sonavault::automation {

namespace {

bool covers(const Interruption& each, double second) {
    return second >= each.from && second < each.from + each.duration;
}

/// All of `text` as a number that is not negative.
std::optional<double> seconds(const std::string& text) {
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    double value = 0;
    if (!(in >> value) || !in.eof()) return std::nullopt;
    if (!std::isfinite(value) || value < 0) return std::nullopt;
    return value;
}

}  // namespace

std::optional<Interruption> parseInterruption(AirState state, const std::string& text) {
    const auto colon = text.find(':');
    if (colon == std::string::npos) return std::nullopt;
    const auto from = seconds(text.substr(0, colon));
    const auto duration = seconds(text.substr(colon + 1));
    if (!from || !duration) return std::nullopt;
    return Interruption{state, *from, *duration};
}

void AirPlan::resumeAt(double second) {
    std::erase_if(interruptions_, [&](const auto& each) { return covers(each, second); });
}

AirState AirPlan::at(double second) const {
    AirState state = AirState::onAir;
    for (const auto& each : interruptions_)
        if (covers(each, second)) state = std::max(state, each.state);
    return state;
}

std::optional<Command> parseCommand(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    std::string argument;
    std::string rest;
    words >> verb >> argument >> rest;
    if (!rest.empty()) return std::nullopt;
    if (verb == "stall") {
        const auto length = seconds(argument);
        if (!length) return std::nullopt;
        return Command{Command::Kind::stall, *length};
    }
    if (!argument.empty()) return std::nullopt;
    if (verb == "drop") return Command{Command::Kind::drop};
    if (verb == "resume") return Command{Command::Kind::resume};
    if (verb == "quit") return Command{Command::Kind::quit};
    return std::nullopt;
}

}  // namespace sonavault::automation
