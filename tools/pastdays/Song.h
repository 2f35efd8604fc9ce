#pragma once

#include "pastdays/Samples.h"

namespace sonavault::pastdays {

enum class Mood { quiet, lively };

/// A song of that length: chords, a bass, drums and a melody in verses and choruses, in a key and a
/// tempo of its own. It begins at once and fades out. The same seed gives the same song.
Samples song(unsigned seed, Mood mood, double seconds);

/// The same without its beginning and end, to be talked over.
Samples bed(unsigned seed, double seconds);

/// A run of notes up to a chord that rings out: what a station plays between two items.
Samples jingle(unsigned seed, double seconds);

}  // namespace sonavault::pastdays
