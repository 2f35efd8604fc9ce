// A waveform that was computed while the file grew is not of all of it.

#include "recorder/RecorderFixture.h"

namespace sonavault {
namespace {

using testing::at;

class WaveformCache : public testing::RecorderFixture {
  protected:
    /// As somebody who looks at the day meanwhile leaves it.
    void haveWaveform() const { testing::writeFile(dayFile("peaks"), "of a part"); }
    bool isThere() const { return std::filesystem::exists(dayFile("peaks")); }
};

TEST_F(WaveformCache, is_gone_when_a_recording_begins_and_when_it_ends) {
    useLineInput();
    haveWaveform();
    ASSERT_TRUE(recorder_->toggleRecording());
    EXPECT_FALSE(isThere());
    runFor(1);
    haveWaveform();
    ASSERT_FALSE(recorder_->toggleRecording());
    EXPECT_FALSE(isThere());
}

TEST_F(WaveformCache, of_the_old_day_is_gone_after_midnight) {
    clock_.set(at("2026-03-02T22:59:58.0Z"));
    useLineInput();
    ASSERT_TRUE(recorder_->toggleRecording());
    haveWaveform();
    runFor(5);
    ASSERT_TRUE(std::filesystem::exists(dayFile("mp3", "2026-03-03")));
    EXPECT_FALSE(isThere());
}

}  // namespace
}  // namespace sonavault
