#pragma once

#include <QImage>
#include <QPainter>
#include <array>
#include <string>
#include <unordered_map>

#include "review/Geometry.h"
#include "store/RecordingModel.h"
#include "views/PixelGrid.h"

namespace sonavault {

/// Draws markers by the thousand. A marker of one type looks the same wherever it stands, so each
/// is drawn once and then copied to whole pixels; only spans that are longer than the least are
/// drawn each for itself.
///
/// Thread: main.
class MarkerPainter {
  public:
    /// A stretch of painting, in which the painter counts pixels and not points.
    class Session {
      public:
        Session(MarkerPainter& owner, QPainter& painter);
        ~Session() { painter_.restore(); }
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;

        /// `frame`: where the marker stands in the view. Of a long span only what lies in `exposed`
        /// is drawn. Units: points
        void paint(const Marker& marker, const Box& frame, Extent exposed);

      private:
        void paintShapes(const Marker& marker, Size size, QPointF at, Extent exposed);

        MarkerPainter& owner_;
        QPainter& painter_;
        PixelGrid grid_;  ///< as it was before the session
    };

  private:
    using Sprites = std::unordered_map<std::string, QImage>;

    const QImage& spriteOf(const Marker& marker, Size size, double scale);

    double scale_ = 0;  ///< that of the sprites
    Sprites shapes_;    ///< by type
    Sprites spans_;     ///< those of the least width, by type
};

}  // namespace sonavault
