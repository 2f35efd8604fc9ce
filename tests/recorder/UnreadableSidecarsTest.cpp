// Sidecars that can't be looked at: what is there must not be replaced.

#include "recorder/RecorderFixture.h"

namespace sonavault {
namespace {

class UnreadableSidecars : public testing::RecorderFixture {};

TEST_F(UnreadableSidecars, are_not_taken_for_absent) {
    std::filesystem::create_directories(dayFile("json").parent_path());
    // A name that leads to itself can't be followed, whoever asks.
    std::filesystem::create_symlink(dayFile("json"), dayFile("json"));
    useLineInput();
    ASSERT_TRUE(recorder_->toggleRecording());
    runFor(1);
    EXPECT_FALSE(recorder_->toggleRecording());
    EXPECT_TRUE(std::filesystem::is_symlink(dayFile("json")));
    EXPECT_TRUE(log_.containing("manifest write failed").empty()) << "it was not even tried";
    EXPECT_GT(std::filesystem::file_size(dayFile("mp3")), 0U) << "the air is recorded all the same";
}

}  // namespace
}  // namespace sonavault
