// What the built program makes of the remains of a crash when it starts.

#include <gtest/gtest.h>

#include "system/Leftovers.h"
#include "system/Station.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kListening = "Sonavault audio server: listening on 9171";

TEST(Recovery, sweeps_what_crashes_left_before_the_recorder_is_there) {
    Station station;
    station.useLink();
    const Leftovers leftovers(
        station.dayFile("mp3").stem().string().substr(std::string("Sonavault_").size()));
    leftovers.layOut(station.audioFolder());
    const auto program = station.start();
    ASSERT_TRUE(program->waitForLine(kListening, 20s)) << program->text();
    std::vector<std::string> log;
    for (const auto& line : program->lines()) {
        if (line.text == kListening) break;
        log.push_back(line.text);
    }
    leftovers.expectSwept(station.audioFolder(), log);
}

}  // namespace
}  // namespace sonavault::testing
