#include "views/KeyResponderView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QVBoxLayout>

#include "ViewProbe.h"
#include "views/Hints.h"

namespace sonavault::testing {
namespace {

/// A view whose left and right half bear texts of their own.
class TwoPlaces final : public QWidget, public HintedPlaces {
  public:
    using QWidget::QWidget;
    QString hintAt(QPoint point) const override {
        return point.x() < width() / 2 ? QStringLiteral("left half") : QStringLiteral("right half");
    }
};

/// The content below a strip that stands for the menu bar, in a window on the screen.
class Content : public ::testing::Test {
  protected:
    static constexpr int kStrip = 30;

    Content() {
        view->setParent(&window);
        view->setTabs(nullptr, airchecks);
        resizeContent(1480, 920);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        view->setFocus();
        view->statusBar().setStatusBarText("status");
        // From no view into the content, and away again: later moves begin outside of it.
        moveToStrip();
    }

    void resizeContent(int width, int height) {
        window.resize(width, height + kStrip);
        view->setGeometry(0, kStrip, width, height);
    }

    void moveTo(int x, int y) { QTest::mouseMove(window.windowHandle(), {x, kStrip + y}); }
    void moveToStrip() { QTest::mouseMove(window.windowHandle(), {600, kStrip / 2}); }

    QWidget* addHinted(QWidget& parent, const QRect& frame, const QString& hint) {
        auto* child = new QWidget(&parent);
        child->setGeometry(frame);
        setSvHint(*child, hint);
        child->show();
        return child;
    }

    void clickAirchecks() { QTest::mouseClick(tabBar(), Qt::LeftButton, {}, {200, 20}); }
    void clickLogs() { QTest::mouseClick(tabBar(), Qt::LeftButton, {}, {20, 20}); }

    std::string shown() { return view->statusBar().statusBarText(); }
    QWidget* tabBar() { return named(*view, "tabBar"); }
    QRect frame(const char* name) {
        const QWidget* found = named(*view, name);
        return found ? found->geometry() : QRect();
    }

    QWidget window;
    KeyResponderView* view = new KeyResponderView;
    QWidget* airchecks = new QWidget;
};

// Places over nothing that explains itself, and over the banner's title.
constexpr QPoint kBare{800, 60};
constexpr QPoint kTitle{200, 50};

TEST(KeyResponderView, opens_at_the_size_of_the_content_and_can_not_be_made_too_small) {
    const KeyResponderView view;

    EXPECT_EQ(view.size(), QSize(1480, 920));
    EXPECT_EQ(view.minimumSize(), QSize(1100, 600));
}

TEST_F(Content, stacks_its_regions_at_every_size) {
    for (const QSize size : {QSize(1480, 920), QSize(1100, 600), QSize(2560, 1440)}) {
        resizeContent(size.width(), size.height());
        const int w = size.width();
        const int h = size.height();
        EXPECT_EQ(frame("bannerView"), QRect(0, 0, w, 132));
        EXPECT_EQ(frame("airchecksTabView"), QRect(0, 132, w, h - 172));
        EXPECT_EQ(frame("tabBar"), QRect(w - 304, 93, 304, 40));
        EXPECT_EQ(frame("statusBarView"), QRect(0, h - 40, w, 40));
    }
}

TEST_F(Content, draws_the_tabs_over_the_banner) {
    const QImage image = picture(*view);

    EXPECT_EQ(image.pixelColor(1480 - 304, 94), QColor(235, 235, 239)) << "beside a round corner";
    EXPECT_EQ(image.pixelColor(1480 - 304 + 8, 93 + 30), QColor(230, 232, 237));
    EXPECT_EQ(image.pixelColor(1000, 131), QColor(216, 214, 210)) << "the banner's line";
}

TEST_F(Content, shows_the_logs_first_and_the_other_tab_when_it_is_clicked) {
    EXPECT_EQ(view->activeTab(), "logs");
    EXPECT_TRUE(airchecks->isHidden());

    clickAirchecks();
    EXPECT_EQ(view->activeTab(), "airchecks");
    EXPECT_TRUE(airchecks->isVisible());

    clickLogs();
    EXPECT_EQ(view->activeTab(), "logs");
    EXPECT_TRUE(airchecks->isHidden());
}

TEST_F(Content, keeps_the_tabs_in_front_of_what_they_show) {
    clickAirchecks();

    EXPECT_GT(view->children().indexOf(tabBar()), view->children().indexOf(airchecks));
}

TEST_F(Content, asks_for_help_and_settings) {
    std::vector<std::string> asked;
    view->onHelpClicked = [&] { asked.emplace_back("help"); };
    view->onSettingsClicked = [&] { asked.emplace_back("settings"); };

    QTest::mouseClick(named(*view, "helpButton"), Qt::LeftButton);
    QTest::mouseClick(named(*view, "statusBarSettings"), Qt::LeftButton);

    EXPECT_EQ(asked, (std::vector<std::string>{"help", "settings"}));
}

TEST_F(Content, keeps_the_keyboard_when_a_control_is_clicked) {
    ASSERT_EQ(QApplication::focusWidget(), view);

    QTest::mouseClick(named(*view, "helpButton"), Qt::LeftButton);
    QTest::mouseClick(named(*view, "statusBarSettings"), Qt::LeftButton);
    clickAirchecks();

    EXPECT_EQ(QApplication::focusWidget(), view);
}

TEST_F(Content, takes_the_keyboard_from_a_text_at_a_click_beside_it) {
    auto* text = new QLineEdit(airchecks);
    text->show();
    clickAirchecks();
    text->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), text);

    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, {800, kStrip + 60});

    EXPECT_EQ(QApplication::focusWidget(), view);
}

TEST_F(Content, passes_the_tab_key_through_the_regions_in_reading_order) {
    auto* inTab = new QPushButton(airchecks);
    inTab->show();
    clickAirchecks();
    const std::vector<QWidget*> order{named(*view, "helpButton"), tabBar(), inTab,
                                      named(*view, "statusBarSettings")};

    for (QWidget* stop : order) {
        QTest::keyClick(window.windowHandle(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), stop);
    }
    QTest::keyClick(window.windowHandle(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), order.front()) << "and round again";
    QTest::keyClick(window.windowHandle(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), order.back());
}

TEST_F(Content, leaves_out_what_can_not_be_used_when_the_tab_key_goes_round) {
    auto* inTab = new QPushButton(airchecks);
    inTab->show();

    QTest::keyClick(window.windowHandle(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), named(*view, "statusBarSettings"));
    QTest::keyClick(window.windowHandle(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), tabBar()) << "the other tab is hidden";

    clickAirchecks();
    inTab->setEnabled(false);
    QTest::keyClick(window.windowHandle(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), named(*view, "statusBarSettings"));
}

TEST_F(Content, scrolls_to_what_the_tab_key_reaches) {
    auto* area = new QScrollArea(airchecks);
    area->setGeometry(0, 0, 200, 100);
    auto* content = new QWidget;
    content->resize(180, 1000);
    auto* far = new QPushButton(content);
    far->move(0, 900);
    area->setWidget(content);
    area->setFocusPolicy(Qt::NoFocus);
    area->show();
    clickAirchecks();
    tabBar()->setFocus();

    QTest::keyClick(window.windowHandle(), Qt::Key_Tab);

    EXPECT_EQ(QApplication::focusWidget(), far);
    EXPECT_FALSE(far->visibleRegion().isEmpty());
}

TEST_F(Content, explains_what_is_under_the_pointer_and_then_shows_the_status_again) {
    moveTo(kTitle.x(), kTitle.y());
    EXPECT_TRUE(QString::fromStdString(shown()).startsWith("Sonavault "));

    moveTo(kBare.x(), kBare.y());
    EXPECT_EQ(shown(), "status");
}

TEST_F(Content, explains_each_of_its_own_controls) {
    const std::vector<std::pair<QPoint, std::string>> places{
        {{70, 64}, "Sonavault — your station's 24-hour air archive."},
        {{200, 90}, "Sonavault records your on-air signal 24 hours a day."},
        {{1445, 24}, "Open the Sonavault help page in your browser."},
        {{1200, 110}, "Audio Logging — the day timeline, lanes, and scrubber."},
        {{1400, 110}, "Airchecks — scheduled MP3 extracts of recurring shows."},
        {{20, 900}, "Status messages appear to the right of this icon."},
        {{1000, 900}, "Quick keyboard reference for the timeline."},
        {{1430, 900}, "Open Settings — pick the recording quality."},
        {{1462, 900}, "Cadenzo audio link — green when connected, red when not."},
    };
    for (const auto& [place, text] : places) {
        moveTo(place.x(), place.y());
        EXPECT_EQ(shown(), text) << place.x() << ", " << place.y();
    }
    moveToStrip();
    EXPECT_EQ(shown(), "status");
}

TEST_F(Content, overwrites_a_status_that_was_set_while_something_was_explained) {
    moveTo(kTitle.x(), kTitle.y());
    view->statusBar().setStatusBarText("recorded meanwhile");

    moveTo(kTitle.x() + 5, kTitle.y());
    EXPECT_EQ(shown(), "recorded meanwhile") << "still over the same view";
    moveTo(kBare.x(), kBare.y());

    EXPECT_EQ(shown(), "status");
}

TEST_F(Content, keeps_quiet_about_a_hidden_tab) {
    addHinted(*airchecks, {100, 100, 100, 100}, "a card");

    moveTo(150, 132 + 150);
    EXPECT_EQ(shown(), "status");

    clickAirchecks();
    moveTo(151, 132 + 150);
    EXPECT_EQ(shown(), "a card");
}

TEST_F(Content, stops_explaining_what_a_key_has_hidden_under_the_pointer) {
    addHinted(*airchecks, {100, 100, 100, 100}, "a card");
    clickAirchecks();
    moveTo(150, 132 + 150);
    ASSERT_EQ(shown(), "a card");

    QTest::keyClick(tabBar(), Qt::Key_Up);

    EXPECT_EQ(view->activeTab(), "logs");
    EXPECT_EQ(shown(), "status");
}

TEST_F(Content, explains_views_that_were_added_later_and_take_no_mouse) {
    clickAirchecks();
    QWidget* inner = addHinted(*airchecks, {0, 0, 300, 300}, {});
    QWidget* label = addHinted(*inner, {100, 100, 100, 100}, "a label");
    label->setAttribute(Qt::WA_TransparentForMouseEvents);

    moveTo(150, 132 + 150);

    EXPECT_EQ(shown(), "a label");
}

TEST_F(Content, follows_the_places_of_one_view) {
    clickAirchecks();
    auto* places = new TwoPlaces(airchecks);
    places->setGeometry(0, 0, 200, 200);
    places->show();

    moveTo(50, 132 + 50);
    EXPECT_EQ(shown(), "left half");
    moveTo(150, 132 + 50);
    EXPECT_EQ(shown(), "right half");
    moveTo(400, 132 + 50);
    EXPECT_EQ(shown(), "status");
}

TEST_F(Content, shows_the_status_again_when_the_view_under_the_pointer_has_gone) {
    clickAirchecks();
    QWidget* card = addHinted(*airchecks, {100, 100, 100, 100}, "a card");
    moveTo(150, 132 + 150);
    ASSERT_EQ(shown(), "a card");

    delete card;
    moveTo(151, 132 + 150);

    EXPECT_EQ(shown(), "status");
}

TEST_F(Content, shows_the_status_again_when_the_pointer_leaves_the_content) {
    moveTo(kTitle.x(), kTitle.y());
    ASSERT_NE(shown(), "status");

    moveToStrip();

    EXPECT_EQ(shown(), "status");
}

TEST_F(Content, explains_again_what_the_pointer_comes_back_to) {
    moveTo(kTitle.x(), kTitle.y());
    const std::string text = shown();
    moveToStrip();

    moveTo(kTitle.x(), kTitle.y());

    EXPECT_EQ(shown(), text);
}

TEST_F(Content, keeps_what_it_explains_during_a_drag) {
    moveTo(kTitle.x(), kTitle.y());
    const std::string text = shown();

    QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, {kTitle.x(), kStrip + kTitle.y()});
    moveTo(kBare.x(), kBare.y());
    EXPECT_EQ(shown(), text);

    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, {kBare.x(), kStrip + kBare.y()});
    moveTo(kBare.x() + 1, kBare.y());
    EXPECT_EQ(shown(), "status");
}

TEST_F(Content, explains_only_while_its_window_is_the_active_one) {
    moveTo(kTitle.x(), kTitle.y());
    ASSERT_NE(shown(), "status");

    QDialog dialog;
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_EQ(shown(), "status");
    moveTo(kTitle.x() + 5, kTitle.y());
    EXPECT_EQ(shown(), "status");

    dialog.close();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    moveTo(kTitle.x(), kTitle.y());
    EXPECT_NE(shown(), "status");
}

TEST_F(Content, pays_no_heed_to_the_pointer_in_another_window) {
    moveTo(kTitle.x(), kTitle.y());
    const std::string text = shown();
    QWidget other;
    other.setGeometry(window.geometry());
    other.setAttribute(Qt::WA_ShowWithoutActivating);

    QMouseEvent move(QEvent::MouseMove, {800, 90}, window.mapToGlobal(QPointF(800, 90)),
                     Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(&other, &move);

    EXPECT_EQ(shown(), text);
}

}  // namespace
}  // namespace sonavault::testing
