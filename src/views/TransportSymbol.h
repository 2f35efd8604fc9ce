#pragma once

#include <QPainterPath>
#include <QString>

namespace sonavault {

/// The shape of a transport button's title ("⏮", "▶", "⏸", "⏭", "[", "]"), centred on (0, 0):
/// no face of the interface has these glyphs. Empty for any other title. Units: pixels
QPainterPath transportSymbol(const QString& title);

}  // namespace sonavault
