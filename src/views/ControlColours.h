#pragma once

#include <QColor>

namespace sonavault {

// The colours of texts and controls on a light ground. The fainter two still have the contrast that
// small type needs on white.
inline constexpr QColor kColorLabel{38, 38, 38};
inline constexpr QColor kColorSecondaryLabel{88, 88, 92};
inline constexpr QColor kColorTertiaryLabel{114, 114, 118};

inline constexpr QColor kColorAccent{0, 112, 245};
inline constexpr QColor kColorFocusRing{0, 112, 245, 110};

inline constexpr QColor kColorControlFace{255, 255, 255};
inline constexpr QColor kColorControlPressed{232, 232, 236};
inline constexpr QColor kColorControlStroke{176, 176, 182};

}  // namespace sonavault
