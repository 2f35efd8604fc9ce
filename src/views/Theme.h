#pragma once

#include <QColor>
#include <QFont>

namespace sonavault {

// The window's colours. They don't follow the desktop's: a station's screen looks the same on every
// machine.
inline constexpr QColor kColorAppBG{199, 201, 204};
inline constexpr QColor kColorPanelBG{250, 250, 250};
inline constexpr QColor kColorPanelStroke{216, 214, 210};
inline constexpr QColor kColorTitle{26, 26, 26};
inline constexpr QColor kColorSlogan{92, 92, 92};
inline constexpr QColor kColorSystemRed{255, 59, 48};
inline constexpr QColor kColorSystemGreen{40, 205, 65};
inline constexpr QColor kColorWaiting{255, 149, 0};

/// A grey. Range: 0, black, to 1, white.
QColor whiteLevel(double white);

/// The face of all texts. Units: pixels
QFont interfaceFont(int pixelSize, QFont::Weight weight = QFont::Normal);

/// The face of clocks and counters, whose digits all have one width. Units: pixels
QFont digitsFont(int pixelSize, QFont::Weight weight = QFont::Normal);

}  // namespace sonavault
