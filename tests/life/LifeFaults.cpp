#include "life/LifeFaults.h"

#include <cmath>
#include <thread>

namespace sonavault::testing {

namespace {

using namespace std::chrono_literals;

// What the encoder and the link hold at most, which dies with the program.
constexpr double kHeldBack = 0.45;

// Orders are read every 50 ms.
constexpr double kOrderDelay = 0.15;

// A file that is closed has a frame or two more than went into it; one that was not, fewer.
constexpr double kReopenSlack = 0.35;

constexpr auto kStarted = "Sonavault recorder: started (";
constexpr auto kDropped = "Cadenzo dropped while recording";

void pass(double seconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(std::lround(seconds * 1000)));
}

void killAndRestart(LivingStation& station) {
    station.air().interrupt(station.now(), kHeldBack);
    station.kill();
    pass(station.between(0, 2));
    const double back = station.launch();
    station.settle(back, kReopenSlack, 0);
}

/// The link was lost after line `from`: waits for it to come back.
void comeBack(LivingStation& station, std::size_t from, double misplaced = 0) {
    const auto back = station.expect(station.program(), kStarted, from);
    station.settle(station.momentOf(back), kReopenSlack, from, misplaced);
}

void dropTheLink(LivingStation& station) {
    const auto from = station.program().lineCount();
    station.air().interrupt(station.now(), 0.05);
    station.automation().type("drop");
    station.expect(station.program(), kDropped, from);
    station.sendMarker();  // on a link of its own, which needs no audio
    comeBack(station, from);
}

void killTheSender(LivingStation& station) {
    const auto from = station.program().lineCount();
    station.air().interrupt(station.now(), kOrderDelay);
    station.killAutomation();
    station.expect(station.program(), kDropped, from);
    pass(station.between(0, 3));
    station.startAutomation();
    comeBack(station, from);
}

/// A stall that is shorter than the file is ahead of the clock leaves no gap to be filled.
void stallTheSender(LivingStation& station) {
    constexpr double kUnsure = 0.6;  // so near to it nobody can tell whether there is one
    const double ahead = station.air().ahead();
    double length = std::round(station.between(15, 40)) / 10;
    if (std::abs(length - ahead) < kUnsure) length = std::ceil(10 * (ahead + kUnsure)) / 10;
    const double begun = station.now();
    auto from = station.program().lineCount();
    station.automation().type("stall " + std::to_string(length));
    station.air().interrupt(begun, 0);
    pass(length / 2);
    station.sendMarker();
    if (length > ahead) {
        const auto back =
            station.expect(station.program(), "Sonavault recorder: wall-clock pad", from);
        station.settle(station.momentOf(back), kOrderDelay, from);
    } else {
        pass(begun + length + kOrderDelay - station.now());
        from = station.program().lineCount();
        station.settle(begun + length, kOrderDelay, from);
    }
}

void stepAhead(LivingStation& station) {
    stepClock(station, std::lround(station.between(2, 20)));
}

void sleepLong(LivingStation& station) {
    stepClock(station, std::lround(station.between(600, 1400)));
}

void stepBack(LivingStation& station) {
    stepClock(station, -std::lround(station.between(1, 4)));
}

void killTheHub(LivingStation& station) {
    station.live(0.5);
    const auto from = station.program().lineCount();
    station.killHub();
    station.live(station.between(0.5, 2));
    station.startHub();
    station.expect(station.program(), "Sonavault Switchboard: state = connected(", from);
    station.expect(station.hub(), "cadenzo.playback-state-changed", 0);
    station.publishSilence();
    station.live(1);
}

void dropTheMarkerLink(LivingStation& station) {
    station.sendMarker();
    station.automation().type("marker-drop");
    station.live(0.2);
    station.sendMarker();  // waits for the link, and is sent once
    station.live(0.5);
}

void fillTheDisk(LivingStation& station) {
    constexpr double kAfterwards = 1;
    // The rest of a page that is begun takes 1.4 s at 24 kbps, and an order takes its time.
    constexpr double kMisplaced = kAfterwards + 1.4 + 0.4;
    station.live(0.8);  // what was sent is written
    const auto from = station.program().lineCount();
    station.air().interrupt(station.now(), kHeldBack);
    if (!station.disk().fill()) throw std::runtime_error("the disk can't be filled");
    pass(station.between(3, 6));
    if (!station.disk().changeSize(LivingStation::kRoom))
        throw std::runtime_error("no space again");
    // What was lost is made up for when the file is opened again.
    pass(kAfterwards);
    station.automation().type("drop");
    station.expect(station.program(), kDropped, from);
    comeBack(station, from, kMisplaced);
}

}  // namespace

const LifeFault kKill{"the recorder is killed", killAndRestart};
const LifeFault kDrop{"the audio link drops", dropTheLink};
const LifeFault kSenderDies{"the automation is killed", killTheSender};
const LifeFault kStall{"the automation stalls", stallTheSender};
const LifeFault kStepAhead{"the clock is put ahead", stepAhead};
const LifeFault kSleep{"the machine sleeps", sleepLong};
const LifeFault kStepBack{"the clock is put back", stepBack};
const LifeFault kHubDies{"the hub is killed", killTheHub};
const LifeFault kMarkerDrop{"the marker link drops", dropTheMarkerLink};
const LifeFault kFullDisk{"the disk is full", fillTheDisk};

void stepClock(LivingStation& station, long seconds) {
    station.note("the clock is moved by " + std::to_string(seconds) + " s");
    const auto from = station.program().lineCount();
    // Until it is moved the file goes on with the clock, however long this takes.
    const double before = station.now();
    station.air().interrupt(before, 0.05);
    station.moveClock(seconds);
    station.settle(before + static_cast<double>(seconds), 0, from);
}

void moveToDay(LivingStation& station, double moment) {
    const bool isKilled = station.random()() % 2 == 0;
    station.live(0.8);
    station.air().interrupt(station.now(), kHeldBack);
    const auto from = isKilled ? 0 : station.program().lineCount();
    if (isKilled) station.kill();
    station.setClock(moment);
    station.note(isKilled ? "another day, after a kill" : "another day, while recording");
    if (isKilled)
        station.launch();
    else
        station.expect(station.program(), "Sonavault recorder: rolled over → ", from);
    station.settleInNewDay(isKilled ? 0 : station.program().lineCount());
}

void liveOnLineInput(LivingStation& station, double noon) {
    constexpr double kUntilTheToneIsHeard = 2;
    station.live(0.8);
    station.air().interrupt(station.now(), kHeldBack);
    station.kill();
    station.useLineInput();
    station.setClock(noon);
    station.note("a day of the line input");
    station.sound().start();
    station.sound().playTone(1000);
    pass(kUntilTheToneIsHeard);
    station.launch();
    station.settleInNewDay(0);
    station.live(4);

    const auto from = station.program().lineCount();
    station.note("the sound server dies");
    station.air().interrupt(station.now(), 0.3);
    station.sound().kill();
    pass(station.between(1, 4));
    station.sound().start();
    station.sound().playTone(1000);
    const auto back = station.expect(station.program(), "Sonavault recorder: wall-clock pad", from);
    pass(kUntilTheToneIsHeard);
    station.settle(station.momentOf(back), kReopenSlack, from);
    station.live(4);
    station.air().interrupt(station.now(), kHeldBack);
    station.kill();
    station.sound().kill();
    station.useLink();
}

}  // namespace sonavault::testing
