#pragma once

#include <QPainterPath>
#include <QString>

namespace sonavault {

/// The shape that stands for a transport button's title, "⏮", "▶", "⏸", "⏭", "[" or "]".
/// No face of the interface has all of these glyphs. Centred on (0, 0); empty for any other title.
/// Units: pixels
QPainterPath transportSymbol(const QString& title);

}  // namespace sonavault
