// A day whose manifest says what cannot be.

#include <QAbstractButton>
#include <QApplication>
#include <QTest>

#include "shell/ShellFixture.h"
#include "support/SyntheticMp3.h"

namespace sonavault::testing {
namespace {

class DamagedDayTest : public ShellFixture, public ::testing::WithParamInterface<const char*> {
  protected:
    DamagedDayTest() {
        const auto file = temp_ / "home/Calderwave/Station/Logs/Audio" / "Sonavault_2026-03-01.mp3";
        writeFile(file, SyntheticMp3().frames(4000).bytes());
        writeFile(std::filesystem::path(file).replace_extension("json"),
                  std::string(R"({"version": 1, "start_offset_sec": )") + GetParam() + "}");
    }

    LanesInnerView& inner() {
        return controller().timeline().view().lanesScroll().lanesInnerView();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&controller().rootView(), key, modifiers);
    }
    double playhead() { return controller().review().day().playheadSec(); }
};

TEST_P(DamagedDayTest, can_be_looked_at_and_left) {
    launch();
    ASSERT_TRUE(controller().review().day().loadedManifest());
    EXPECT_GE(inner().playheadFrame().x, -1);
    EXPECT_LE(inner().playheadFrame().x, inner().timelineWidth());
    for (std::size_t preset = 0; preset < kZoomPresets.size(); ++preset) {
        controller().timeline().zoom().zoomPresetClicked(preset);
        controller().rootView().grab();
    }
    press(Qt::Key_BracketLeft);
    controller().rootView().grab();
    press(Qt::Key_Space);
    passSeconds(0.1);
    press(Qt::Key_Right, Qt::ControlModifier);
    passSeconds(0.1);
    press(Qt::Key_BracketRight);
    controller().rootView().grab();
    controller().review().playback().jumpTo({3600});
    EXPECT_EQ(playhead(), 3600);
}

INSTANTIATE_TEST_SUITE_P(Offsets, DamagedDayTest, ::testing::Values("1e300", "-1e300", "1.7e308"));

}  // namespace
}  // namespace sonavault::testing
