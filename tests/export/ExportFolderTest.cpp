#include "export/ExportFolder.h"

#include "export/ExportFixture.h"
#include "support/ScopedEnvironment.h"

namespace sonavault::testing {
namespace {

class ExportFolderTest : public ExportFixture {
  protected:
    const ScopedEnvironment configuration_{"XDG_CONFIG_HOME", (home_ / "config").string()};
    const ScopedEnvironment homeVariable_{"HOME", home_.path().string()};
};

TEST_F(ExportFolderTest, is_that_of_the_last_export) {
    std::filesystem::create_directories(stationFolder());
    std::filesystem::create_directories(home_ / "cuts");
    folder_.remember(home_ / "cuts" / "one.mp3");
    EXPECT_EQ(folder_.defaultExportFolderURL(), home_ / "cuts");
    EXPECT_EQ(readFile(home_ / "sonavault.conf"),
              "[General]\nSonavaultLastExportFolder=" + (home_ / "cuts").string() + "\n");
}

TEST_F(ExportFolderTest, is_the_station_folder_when_that_one_was_deleted_or_never_was) {
    std::filesystem::create_directories(stationFolder());
    EXPECT_EQ(folder_.defaultExportFolderURL(), stationFolder());
    folder_.remember(home_ / "gone" / "one.mp3");
    EXPECT_EQ(folder_.defaultExportFolderURL(), stationFolder());
}

TEST_F(ExportFolderTest, is_the_persons_documents_or_home_without_a_station) {
    EXPECT_EQ(folder_.defaultExportFolderURL(), home_.path());
    std::filesystem::create_directories(home_ / "Documents");
    EXPECT_EQ(folder_.defaultExportFolderURL(), home_ / "Documents");
}

}  // namespace
}  // namespace sonavault::testing
