#pragma once

#include "pastdays/Samples.h"

namespace sonavault::pastdays {

/// Who speaks. Range of `height`: 0.7 for a deep voice to 1.5 for a high one
struct Speaker {
    double height = 1;
    double dBFS = -18;  ///< how loud while speaking and pausing
};

/// Somebody talking in phrases with pauses between them.
Samples talk(unsigned seed, Speaker speaker, double seconds);

/// Two people in turn, the second one softer.
Samples conversation(unsigned seed, double seconds);

/// So many spots in a row, each a voice over music, the loudest that a station sends.
Samples adBreak(unsigned seed, int spots, double seconds);

/// Two tones in turn, which nobody takes for music or for a real alert, then a voice.
Samples alert(unsigned seed, double seconds);

}  // namespace sonavault::pastdays
