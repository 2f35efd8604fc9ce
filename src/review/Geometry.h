#pragma once

namespace sonavault {

// Places and sizes as the views draw them. Units: points. y grows downwards.

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

struct Box {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double right() const { return x + width; }
    double bottom() const { return y + height; }

    /// The right and the bottom side belong to the neighbour.
    bool contains(Point point) const {
        return point.x >= x && point.x < right() && point.y >= y && point.y < bottom();
    }

    bool operator==(const Box&) const = default;
};

/// The part of a view that has to be drawn anew. Units: points
struct Extent {
    double left = 0;
    double right = 0;
};

}  // namespace sonavault
