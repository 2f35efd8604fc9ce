#pragma once

#include <array>

#include "pastdays/Piece.h"

namespace sonavault::pastdays {

/// What the automation calls its items, in turn.
using Labels = std::array<const char*, 6>;

constexpr Labels labelsOf(PieceKind kind) {
    switch (kind) {
        case PieceKind::talk:
            return {"Nora at the desk",        "Weather with Tomas", "Traffic, live from the ring",
                    "Studio guest: the mayor", "Phone-in, line 3",   "Nora: \"what a morning\""};
        case PieceKind::voicetrack:
            return {"VT: Jonas, evening show",
                    "VT: Jonas over the intro",
                    "VT: Mirela, back-announce",
                    "VT: Mirela, weekend line-up",
                    "VT: night desk",
                    "VT: Jonas, \"stay tuned\""};
        case PieceKind::adBreak:
            return {"Stopset A, 4 spots", "Stopset B, 4 spots", "Stopset C, 4 spots",
                    "Local spots",        "Sponsor: the ferry", "Promo and 3 spots"};
        case PieceKind::alert:
            return {"Required weekly test",   "Severe weather statement", "Required monthly test",
                    "High water at the quay", "Road closed, coast",       "Test"};
        case PieceKind::jingle:
            return {"Contest: winner on line 2", "Request from Ada", "Long song, check the level",
                    "Request from Per",          "News flash read",  "Contest: hint"};
        default:
            return {"The Paper Boats - Harbour Lights",    "Ines Valdor - Slow Orange",
                    "Kite & Anchor - Nine Miles, Walking", "The Lamplighters - \"Home, Again\"",
                    "Quarter Past - Windows Down",         "Marlo - Salt"};
    }
}

}  // namespace sonavault::pastdays
