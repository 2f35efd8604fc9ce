// The program in a window on a display, with a person's keys.

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

#include "platform/AudioFileInfo.h"
#include "support/Eventually.h"
#include "support/PrivateSoundServer.h"
#include "system/PrivateDisplay.h"
#include "system/Station.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kStarted = "Sonavault recorder: started (line input) → ";

class WindowTest : public ::testing::Test {
  protected:
    WindowTest() {
        sound_.start();
        station_.setEnvironment(sound_.environment());
        station_.setEnvironment(display_.environment());
        station_.useLineInput();
    }

    void recordByShortcut() {
        program_ = station_.start();
        display_.press("ctrl+r", "Sonavault");
        ASSERT_TRUE(program_->waitForLine(kStarted, 20s)) << program_->text();
    }

    double recordedSec() const {
        const auto info = readAudioFileInfo(station_.dayFile("mp3"));
        return info ? info.value().durationSec() : 0;
    }

    bool eventuallyHasRecorded(double seconds) const {
        return eventually([&] { return recordedSec() >= seconds; });
    }

    PrivateDisplay display_;
    PrivateSoundServer sound_;
    Station station_;
    std::unique_ptr<ChildProcess> program_;
};

TEST_F(WindowTest, the_recording_shortcut_begins_a_day_that_grows_on_after_a_kill) {
    recordByShortcut();
    EXPECT_TRUE(eventuallyHasRecorded(1));
    program_->signal(SIGKILL);
    ASSERT_TRUE(program_->waitForEnd(10s));
    const double firstRun = recordedSec();

    recordByShortcut();
    EXPECT_TRUE(eventuallyHasRecorded(firstRun + 1));
}

TEST_F(WindowTest, the_recording_shortcut_stops_what_it_began) {
    recordByShortcut();
    EXPECT_TRUE(eventuallyHasRecorded(1));
    display_.press("ctrl+r", "Sonavault");
    ASSERT_TRUE(program_->waitForLine("Sonavault recorder: stopped → ", 20s)) << program_->text();
    EXPECT_TRUE(program_->isAlive());
}

TEST_F(WindowTest, a_quit_leaves_the_day_as_a_crash_would) {
    station_.useLink();
    station_.resumeOnLaunch();
    program_ = station_.start();
    const auto automation = station_.startAutomation({"--signal", "tone", "--stall-at", "4:60"});
    ASSERT_TRUE(eventuallyHasRecorded(1)) << program_->text() << automation->text();
    std::uintmax_t size = 0;
    while (size != std::filesystem::file_size(station_.dayFile("mp3"))) {
        size = std::filesystem::file_size(station_.dayFile("mp3"));
        std::this_thread::sleep_for(1s);
    }
    display_.press("ctrl+q", "Sonavault");
    EXPECT_EQ(program_->waitForEnd(10s), 0);
    EXPECT_EQ(std::filesystem::file_size(station_.dayFile("mp3")), size)
        << "nothing was flushed on the way out";
    EXPECT_FALSE(program_->waitForLine("stopped →", 0s)) << program_->text();
}

}  // namespace
}  // namespace sonavault::testing
