#pragma once

namespace sonavault {

/// A colour of the screen. Range: 0 to 1 each
struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    constexpr Colour withAlpha(double other) const { return {red, green, blue, other}; }
    bool operator==(const Colour&) const = default;
};

/// Range: 0 to 255 each
constexpr Colour rgb(int red, int green, int blue) {
    return {red / 255.0, green / 255.0, blue / 255.0};
}

/// A grey. Range: 0, black, to 1, white
constexpr Colour whiteLevelColour(double level, double alpha = 1) {
    return {level, level, level, alpha};
}

}  // namespace sonavault
