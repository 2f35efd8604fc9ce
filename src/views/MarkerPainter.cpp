#include "views/MarkerPainter.h"

#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <variant>

#include "review/MarkerLook.h"
#include "views/Painting.h"

namespace sonavault {

namespace {

/// More than a station uses. Types are free text, so a log may hold any number of them.
constexpr std::size_t kMostSprites = 64;

/// Puts shapes into a path, of which only what lies in `exposed` matters. Units: points
class Outliner {
  public:
    Outliner(QPainterPath& path, Extent exposed) : path_(path), exposed_(exposed) {}

    void operator()(const Box& box) const { path_.addRect(toQRectF(shortened(box, 0))); }
    void operator()(const RoundedBox& rounded) const {
        path_.addRoundedRect(toQRectF(shortened(rounded.box, rounded.radius)), rounded.radius,
                             rounded.radius);
    }
    void operator()(const Triangle& corners) const {
        QPolygonF polygon;
        for (const Point& each : corners) polygon.append({each.x, each.y});
        path_.addPolygon(polygon);
        path_.closeSubpath();
    }

  private:
    /// A span may be thousands of screens long, and what draws it counts in small numbers.
    Box shortened(Box box, double margin) const {
        const double left = std::max(box.x, exposed_.left - margin);
        const double right = std::min(box.right(), exposed_.right + margin);
        return {left, box.y, std::max(0.0, right - left), box.height};
    }

    QPainterPath& path_;
    Extent exposed_;
};

void paintAll(QPainter& painter, const MarkerShapes& shapes, Extent exposed) {
    painter.setRenderHint(QPainter::Antialiasing);
    // Neighbours of one colour are filled as one, so that no seam shows between them on a screen
    // where their common edge lies within a pixel.
    for (const FilledShape* each = shapes.begin(); each != shapes.end();) {
        const Colour colour = each->colour;
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        for (; each != shapes.end() && each->colour == colour; ++each)
            std::visit(Outliner(path, exposed), each->outline);
        painter.fillPath(path, toQColor(colour));
    }
}

QImage drawnSprite(const Marker& marker, Size size, double scale) {
    const QSize pixels(static_cast<int>(std::ceil(size.width * scale)),
                       static_cast<int>(std::ceil(size.height * scale)));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(scale, scale);
    paintAll(painter, markerShapes(marker, size), {0, size.width});
    return image;
}

}  // namespace

const QImage& MarkerPainter::spriteOf(const Marker& marker, Size size, double scale) {
    if (scale != scale_) {
        shapes_.clear();
        spans_.clear();
        scale_ = scale;
    }
    Sprites& sprites = isSpan(marker) ? spans_ : shapes_;
    const auto known = sprites.find(marker.type);
    if (known != sprites.end()) return known->second;
    if (sprites.size() >= kMostSprites) sprites.clear();
    return sprites.emplace(marker.type, drawnSprite(marker, size, scale)).first->second;
}

MarkerPainter::Session::Session(MarkerPainter& owner, QPainter& painter)
    : owner_(owner), painter_(painter), grid_(painter) {
    painter_.save();
    // Copying is fast only without scaling.
    painter_.scale(1 / grid_.scale(), 1 / grid_.scale());
}

void MarkerPainter::Session::paint(const Marker& marker, const Box& frame, Extent exposed) {
    const double scale = grid_.scale();
    const QPointF at = QPointF(grid_.x(frame.x), grid_.y(frame.y)) * scale;
    if (marker.type == "hour") {
        const QRectF tick = grid_.line(frame);
        painter_.fillRect(QRectF(at, tick.size() * scale), toQColor(markerColour(marker.type)));
        return;
    }
    const Size size{frame.width, frame.height};
    if (!isSpan(marker) || size.width <= kMarkerInstantBodyW) {
        painter_.drawImage(at, owner_.spriteOf(marker, size, scale));
        return;
    }
    paintShapes(marker, size, at, {exposed.left - frame.x, exposed.right - frame.x});
}

void MarkerPainter::Session::paintShapes(const Marker& marker, Size size, QPointF at,
                                         Extent exposed) {
    const double scale = grid_.scale();
    size.width = std::round(size.width * scale) / scale;
    painter_.save();
    painter_.translate(at);
    painter_.scale(scale, scale);
    constexpr double kMargin = 4;
    paintAll(painter_, markerShapes(marker, size),
             {exposed.left - kMargin, exposed.right + kMargin});
    painter_.restore();
}

}  // namespace sonavault
