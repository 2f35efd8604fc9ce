#pragma once

#include <string>
#include <vector>

#include "pastdays/EncodedSound.h"
#include "pastdays/PieceEncoder.h"
#include "pastdays/Samples.h"

namespace sonavault::pastdays {

/// What a piece of air is.
enum class PieceKind {
    song,
    quietSong,
    talk,        ///< somebody at the live microphone
    voicetrack,  ///< somebody who spoke earlier
    adBreak,
    alert,
    jingle,
    silence
};

/// What a piece is made from. The same recipe gives the same sound.
struct Recipe {
    PieceKind kind = PieceKind::silence;
    unsigned seed = 0;
    double seconds = 0;
    bool legacy = false;  ///< good enough for the short legacy day too
};

struct Piece {
    PieceKind kind = PieceKind::silence;
    EncodedSound sound;
};

/// Half an hour of distinct sound, at least one piece of each kind and two songs.
std::vector<Recipe> standardRecipes(unsigned seed);

/// Those of them that are marked as good for the legacy day: one or two of each kind.
std::vector<Recipe> legacyRecipes(unsigned seed);

Samples soundOf(const Recipe& recipe);

/// Makes the pieces, in the order of their recipes, on all cores. Errors: of the first encoder that
/// failed.
Result<std::vector<Piece>> makePieces(const std::vector<Recipe>& recipes, SoundFormat& format);

}  // namespace sonavault::pastdays
