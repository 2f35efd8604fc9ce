#pragma once

#include <algorithm>

namespace sonavault {

/// How large the help page is shown. Not stored: each window starts at 1.
struct HelpZoom {
    static constexpr double kZoomStep = 0.1;
    static constexpr double kZoomMin = 0.5;
    static constexpr double kZoomMax = 3.0;

    double zoomLevel = 1.0;

    /// Follows a key that was pressed together with the command key. False: it is none of ours.
    bool follow(char32_t key) {
        switch (key) {
            case U'+':
            case U'=':  // the same key without shift
                zoomLevel = std::min(zoomLevel + kZoomStep, kZoomMax);
                return true;
            case U'-':
                zoomLevel = std::max(zoomLevel - kZoomStep, kZoomMin);
                return true;
            case U'0':
                zoomLevel = 1.0;
                return true;
            default:
                return false;
        }
    }

    /// The same of a key by its number in Qt, which for these is their character.
    bool followKey(int key) { return key > 0 && key < 0x80 && follow(static_cast<char32_t>(key)); }
};

}  // namespace sonavault
