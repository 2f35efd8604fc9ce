#include "views/RecordingClusterView.h"

#include <gtest/gtest.h>

#include <QImage>

#include "views/FakeDateListHost.h"
#include "views/PaintCounter.h"

namespace sonavault::testing {
namespace {

constexpr QColor kOff{199, 199, 199};
constexpr QColor kLow{96, 137, 171};
constexpr QColor kMed{168, 144, 120};
constexpr QColor kHot{152, 134, 197};

class RecordingClusterTest : public ::testing::Test {
  protected:
    RecordingClusterTest() { cluster_.resize(38, 16); }

    /// The colours in the middles of the three lights.
    std::vector<QColor> lightsAt(float inputDb) {
        host_.inputDb = inputDb;
        cluster_.updateLevels();
        const QImage image = cluster_.grab().toImage();
        return {image.pixelColor(3, 8), image.pixelColor(15, 8), image.pixelColor(27, 8)};
    }

    FakeDateListHost host_;
    RecordingClusterView cluster_{host_, nullptr};
};

TEST_F(RecordingClusterTest, shows_three_lights_that_go_on_at_their_limits) {
    EXPECT_EQ(lightsAt(-160), (std::vector<QColor>{kOff, kOff, kOff}));
    EXPECT_EQ(lightsAt(-60), (std::vector<QColor>{kLow, kOff, kOff}));
    EXPECT_EQ(lightsAt(-24.01F), (std::vector<QColor>{kLow, kOff, kOff}));
    EXPECT_EQ(lightsAt(-24), (std::vector<QColor>{kLow, kMed, kOff}));
    EXPECT_EQ(lightsAt(-18), (std::vector<QColor>{kLow, kMed, kHot}));
    EXPECT_EQ(lightsAt(-60.5F), (std::vector<QColor>{kOff, kOff, kOff}));
}

TEST_F(RecordingClusterTest, shows_the_level_from_the_beginning) {
    host_.inputDb = -20;
    RecordingClusterView late(host_, nullptr);
    late.resize(38, 16);
    EXPECT_EQ(late.grab().toImage().pixelColor(15, 8), kMed);
}

TEST_F(RecordingClusterTest, draws_lights_of_seven_points_in_the_middle) {
    QImage image(38, 16, QImage::Format_ARGB32);
    image.fill(Qt::white);
    cluster_.render(&image, {}, {}, QWidget::DrawChildren);
    EXPECT_EQ(image.pixelColor(7, 8), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(11, 8), QColor(Qt::white));
    EXPECT_LT(image.pixelColor(12, 8).lightness(), 210);
    EXPECT_EQ(image.pixelColor(13, 8), kOff);
    EXPECT_EQ(image.pixelColor(3, 3), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(3, 12), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(31, 8), QColor(Qt::white));
}

TEST_F(RecordingClusterTest, draws_anew_only_when_a_light_changes) {
    host_.inputDb = -30;
    cluster_.updateLevels();
    cluster_.show();
    PaintCounter paints(cluster_);
    host_.inputDb = -31;
    cluster_.updateLevels();
    EXPECT_EQ(paints.take(), 0);
    host_.inputDb = -20;
    cluster_.updateLevels();
    EXPECT_EQ(paints.take(), 1);
}

}  // namespace
}  // namespace sonavault::testing
