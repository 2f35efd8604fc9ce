#include "export/FrameExporter.h"

#include <new>

#include "export/ExportFixture.h"
#include "export/LiteralFrameWalk.h"
#include "support/NoThreads.h"

namespace sonavault::testing {
namespace {

class FrameExporterTest : public ExportFixture {
  protected:
    FrameExporter::Completion remember() {
        return [this](const Result<Done, ExportError>& result) {
            results_.push_back(result ? "done" : result.error().errorDescription());
            tellers_.push_back(std::this_thread::get_id());
        };
    }

    std::vector<std::string> results_;
    std::vector<std::thread::id> tellers_;
};

TEST_F(FrameExporterTest, returns_at_once_and_tells_the_result_on_the_main_thread) {
    loadDay(100);
    exporter_.exportSelectionsToMP3(std::vector{selection(10, 20)}, home_ / "cut.mp3", remember());
    EXPECT_TRUE(results_.empty());
    ASSERT_EQ(exporter_.underWay().size(), 1u);
    EXPECT_EQ(exporter_.underWay()[0].outputURL, home_ / "cut.mp3");
    finishExports();
    EXPECT_EQ(results_, std::vector<std::string>{"done"});
    EXPECT_EQ(tellers_, std::vector{std::this_thread::get_id()});
    EXPECT_EQ(readFile(home_ / "cut.mp3"), LiteralFrameWalk::cut(day_, {{10, 20}}));
}

TEST_F(FrameExporterTest, exports_what_was_selected_when_it_was_asked) {
    loadDay(100);
    desk_.chosen = {selection(10, 20)};
    exporter_.exportSelectionsToMP3(std::nullopt, home_ / "cut.mp3", remember());
    desk_.chosen.clear();
    desk_.loaded.reset();
    desk_.offset = {50};
    finishExports();
    EXPECT_EQ(results_, std::vector<std::string>{"done"});
    EXPECT_EQ(readFile(home_ / "cut.mp3"), LiteralFrameWalk::cut(day_, {{10, 20}}));
}

TEST_F(FrameExporterTest, tells_errors_as_results) {
    exporter_.exportSelectionsToMP3(std::vector{selection(1, 2)}, home_ / "cut.mp3", remember());
    finishExports();
    EXPECT_EQ(results_, std::vector<std::string>{"No source recording loaded."});
}

TEST_F(FrameExporterTest, runs_several_side_by_side) {
    loadDay(100);
    for (int i = 0; i < 5; ++i)
        exporter_.exportSelectionsToMP3(std::vector{selection(i, i + 1)},
                                        home_ / ("cut" + std::to_string(i)), remember());
    EXPECT_EQ(exporter_.underWay().size(), 5u);
    finishExports();
    EXPECT_EQ(results_, std::vector<std::string>(5, "done"));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(readFile(home_ / ("cut" + std::to_string(i))),
                  LiteralFrameWalk::cut(day_, {{i, i + 1}}));
}

TEST_F(FrameExporterTest, can_be_asked_how_far_it_is_while_another_is_told) {
    loadDay(100);
    std::vector<std::size_t> left;
    const auto look = [&](const Result<Done, ExportError>&) {
        left.push_back(exporter_.underWay().size());
        for (const auto& each : exporter_.underWay()) {
            EXPECT_GE(each.fraction, 0);
            EXPECT_LE(each.fraction, 1);
        }
    };
    exporter_.exportSelectionsToMP3(std::vector{selection(1, 2)}, home_ / "one.mp3", look);
    exporter_.exportSelectionsToMP3(std::vector{selection(1, 2)}, home_ / "two.mp3", look);
    finishExports();
    EXPECT_EQ(left, (std::vector<std::size_t>{1, 0}));
}

TEST_F(FrameExporterTest, may_begin_another_export_from_its_callback) {
    loadDay(100);
    exporter_.exportSelectionsToMP3(
        std::vector{selection(1, 2)}, home_ / "one.mp3", [this](const auto&) {
            exporter_.exportSelectionsToMP3(std::vector{selection(3, 4)}, home_ / "two.mp3",
                                            remember());
        });
    finishExports();
    EXPECT_EQ(readFile(home_ / "two.mp3"), LiteralFrameWalk::cut(day_, {{3, 4}}));
}

TEST_F(FrameExporterTest, tells_when_no_thread_is_to_be_had_and_is_done_with_it) {
    loadDay(100);
    {
        const NoThreads none;
        exporter_.exportSelectionsToMP3(std::vector{selection(1, 2)}, home_ / "cut.mp3",
                                        remember());
    }
    EXPECT_TRUE(results_.empty()) << "told later, as ever";
    mainQueue_.runAll();
    EXPECT_EQ(results_,
              std::vector<std::string>{"Could not write output: Resource temporarily unavailable"});
    EXPECT_TRUE(exporter_.underWay().empty());
}

TEST_F(FrameExporterTest, tells_of_a_cut_for_which_there_is_no_memory) {
    FrameExporter starved(desk_, mainQueue_,
                          [](const auto&, const auto&, const auto&, const auto&,
                             const auto&) -> Result<Done, ExportError> { throw std::bad_alloc(); });
    starved.exportSelectionsToMP3(std::vector{selection(1, 2)}, home_ / "cut.mp3", remember());
    const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (results_.empty() && std::chrono::steady_clock::now() < patience)
        if (mainQueue_.runAll() == 0) std::this_thread::yield();
    EXPECT_EQ(results_, std::vector<std::string>{"Could not write output: std::bad_alloc"});
    EXPECT_TRUE(starved.underWay().empty());
}

TEST_F(FrameExporterTest, does_not_replace_a_day_in_a_folder_of_recordings) {
    loadDay(100);
    desk_.recordings = {home_ / "recorded"};
    writeFile(home_ / "recorded/Sonavault_2026-05-09.mp3", "being recorded");
    exporter_.exportSelectionsToMP3(std::vector{selection(1, 2)},
                                    home_ / "recorded/Sonavault_2026-05-09.mp3", remember());
    finishExports();
    EXPECT_EQ(results_,
              std::vector<std::string>{"Could not write output: it is a day's recording"});
    EXPECT_EQ(readFile(home_ / "recorded/Sonavault_2026-05-09.mp3"), "being recorded");
}

TEST_F(FrameExporterTest, calls_nobody_back_once_it_is_gone) {
    loadDay(100);
    {
        FrameExporter brief(desk_, mainQueue_);
        brief.exportSelectionsToMP3(std::vector{selection(1, 2)}, home_ / "cut.mp3", remember());
    }
    mainQueue_.runAll();
    EXPECT_TRUE(results_.empty());
}

}  // namespace
}  // namespace sonavault::testing
