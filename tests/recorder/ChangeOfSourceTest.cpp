// What a change of source ends, and what it leaves alone.

#include "recorder/RecorderFixture.h"

namespace sonavault {
namespace {

class ChangeOfSource : public testing::RecorderFixture {
  protected:
    void recordFromLink() {
        useLink();
        handshake();
        ASSERT_TRUE(recorder_->toggleRecording());
        runFor(1);
        ASSERT_GT(host_->inputDb, -20.0F);
    }
};

TEST_F(ChangeOfSource, closes_the_day_and_does_not_begin_again_on_a_source_that_is_ready) {
    recordFromLink();
    useLineInput();
    EXPECT_TRUE(log_.has("Sonavault recorder: stopped → " + dayFile("mp3").string()));
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_FALSE(host_->isRecording);
    EXPECT_FALSE(input_.isRunning());
    EXPECT_EQ(framesWritten(), 0);
}

TEST_F(ChangeOfSource, leaves_nothing_of_the_link) {
    recordFromLink();
    EXPECT_TRUE(linkLife_.listens());
    useLineInput();
    EXPECT_FALSE(linkLife_.listens());
    EXPECT_FALSE(recorder_->isCadenzoConnected());
    EXPECT_EQ(host_->inputDb, -160.0F);
}

TEST_F(ChangeOfSource, makes_the_converter_anew_for_the_new_source) {
    recordFromLink();
    input_.format = {48000, 2, true};
    useLineInput();
    ASSERT_TRUE(recorder_->toggleRecording());
    const FrameCount before = framesWritten();
    runFor(2);
    EXPECT_NEAR(static_cast<double>(framesWritten() - before), 2 * 22050, 0.03 * 22050);
    EXPECT_TRUE(log_.containing("resample error").empty());
}

TEST_F(ChangeOfSource, from_the_line_input_stops_its_capture) {
    useLineInput();
    ASSERT_TRUE(recorder_->toggleRecording());
    runFor(1);
    useLink();
    EXPECT_FALSE(input_.isRunning());
    EXPECT_FALSE(input_.hasTap());
    EXPECT_EQ(host_->inputDb, -160.0F);
    EXPECT_TRUE(linkLife_.listens());
}

TEST_F(ChangeOfSource, is_what_a_buffer_in_another_format_is_not) {
    recordFromLink();
    const FrameCount before = framesWritten();
    linkFormat_ = {44100, 2, true};
    send(4410);
    EXPECT_EQ(log_.containing("Sonavault recorder: resample error: The buffer is in another format")
                  .size(),
              1U);
    EXPECT_EQ(framesWritten(), before);
    linkFormat_ = {22050, 1, true};
    send(2205);
    EXPECT_EQ(framesWritten(), before + 2205);
}

}  // namespace
}  // namespace sonavault
