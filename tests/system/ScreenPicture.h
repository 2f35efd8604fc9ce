#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "review/Colour.h"
#include "review/Geometry.h"

namespace sonavault::testing {

/// A pixel of the screen. Range: 0 to 255 each
struct Pixel {
    int red = 0;
    int green = 0;
    int blue = 0;
    bool operator==(const Pixel&) const = default;

    /// From 0, black, to 255, white.
    int brightness() const { return (red + green + blue) / 3; }
};

/// How an opaque colour appears on the screen.
Pixel pixelOf(const Colour& colour);

/// What the screen showed at one moment. Units: pixels of the screen
class ScreenPicture {
  public:
    /// `dump`: the file in which an X server keeps its frame buffer.
    /// Errors: std::runtime_error when it is of another kind than the one tests ask for
    explicit ScreenPicture(const std::filesystem::path& dump);

    Size size() const { return {static_cast<double>(width_), static_cast<double>(height_)}; }

    /// Throws when `place` is off the screen.
    Pixel at(Point place) const;

    /// How many pixels of `part` are of that colour, to a step in each component.
    int count(const Box& part, Pixel colour) const;

    /// How many pixels of `part` are not what they are in `other`.
    int differences(const Box& part, const ScreenPicture& other) const;

  private:
    int width_ = 0;
    int height_ = 0;
    std::vector<Pixel> pixels_;
};

}  // namespace sonavault::testing
