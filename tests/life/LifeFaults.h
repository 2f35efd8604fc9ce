#pragma once

#include <string>
#include <vector>

#include "life/LivingStation.h"

namespace sonavault::testing {

/// Something that goes wrong at a station. It returns when the recording has recovered and the
/// account of the air is open again.
struct LifeFault {
    std::string name;
    void (*strike)(LivingStation& station);
};

// The faults that a life is made of.

extern const LifeFault kKill;        ///< the recorder dies and is started again
extern const LifeFault kDrop;        ///< the audio link is lost for half a second
extern const LifeFault kSenderDies;  ///< and comes back with another format
extern const LifeFault kStall;       ///< the sender keeps the link and sends nothing
extern const LifeFault kStepAhead;   ///< the clock is put ahead by seconds
extern const LifeFault kSleep;       ///< by a quarter of an hour or more, as after a sleep
extern const LifeFault kStepBack;    ///< the clock is put back by seconds
extern const LifeFault kHubDies;     ///< and comes back
extern const LifeFault kMarkerDrop;  ///< the marker link is lost between two markers
extern const LifeFault kFullDisk;    ///< nothing can be written; then the link is lost

/// The clock jumps by so many seconds, ahead or back, while the recorder runs.
void stepClock(LivingStation& station, long seconds);

/// A day of the line input whose sound server dies and comes back. The recorder is running from
/// the link before, and again after, with its clock where it was left.
void liveOnLineInput(LivingStation& station, double noon);

/// The clock is set and the station goes on in another day, with the recorder running or killed
/// and started again.
void moveToDay(LivingStation& station, double moment);

}  // namespace sonavault::testing
