#include "recorder/SVQualityLevel.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace sonavault {
namespace {

class QualityPreference : public ::testing::Test {
  protected:
    testing::TempFolder temp_;
    Preferences preferences_{temp_ / "standard.conf"};
};

TEST_F(QualityPreference, absent_means_good) {
    EXPECT_EQ(SVQualityLevel::current(preferences_), SVQualityLevel::good);
}

TEST_F(QualityPreference, off_the_scale_means_good) {
    for (const long long stored : {7LL, 5LL, -1LL, 4'000'000'000LL}) {
        preferences_.setInteger(kQualityLevelKey, stored);
        EXPECT_EQ(SVQualityLevel::current(preferences_), SVQualityLevel::good) << stored;
    }
}

TEST_F(QualityPreference, of_zero_means_crummy_and_not_absent) {
    preferences_.setInteger(kQualityLevelKey, 0);
    EXPECT_EQ(SVQualityLevel::current(preferences_), SVQualityLevel::crummy);
}

TEST_F(QualityPreference, that_is_no_number_counts_as_zero) {
    preferences_.setText(kQualityLevelKey, "loud");
    EXPECT_EQ(SVQualityLevel::current(preferences_), SVQualityLevel::crummy);
}

TEST_F(QualityPreference, gives_each_level_of_the_scale) {
    for (const auto level : SVQualityLevel::allCases) {
        preferences_.setInteger(kQualityLevelKey, level);
        EXPECT_EQ(SVQualityLevel::current(preferences_), level);
    }
}

TEST(SVQualityLevel, has_the_settings_of_its_step) {
    struct Row {
        SVQualityLevel level;
        const char* label;
        int kbps;
        double hourMB;
    };
    for (const auto& row : {Row{SVQualityLevel::crummy, "Crummy", 8, 3.515625},
                            Row{SVQualityLevel::prettyGood, "Pretty Good", 16, 7.03125},
                            Row{SVQualityLevel::good, "Good", 24, 10.546875},
                            Row{SVQualityLevel::reallyGood, "Really Good", 48, 21.09375},
                            Row{SVQualityLevel::crazyGood, "Crazy Good", 96, 42.1875}}) {
        EXPECT_EQ(row.level.label(), row.label);
        EXPECT_EQ(row.level.bitrateKbps(), row.kbps);
        EXPECT_EQ(row.level.oneHourMB(), row.hourMB);
        EXPECT_EQ(row.level.sampleRate(), 22050);
        EXPECT_EQ(row.level.channels(), 1);
    }
}

TEST(SVQualityLevel, tells_its_detail_in_words) {
    EXPECT_EQ(SVQualityLevel(SVQualityLevel::reallyGood).detailString(),
              "22.1 kHz mono · 48 kbps MP3");
    EXPECT_EQ(SVQualityLevel(SVQualityLevel::crummy).detailString(), "22.1 kHz mono · 8 kbps MP3");
}

}  // namespace
}  // namespace sonavault
