#include "views/HintFinder.h"

#include <gtest/gtest.h>

#include <QDialog>

#include "views/Hints.h"

namespace sonavault {

static void PrintTo(const HintedView& found, std::ostream* out) {
    *out << '"' << found.text.toStdString() << '"';
}

namespace testing {
namespace {

class Places final : public QWidget, public HintedPlaces {
  public:
    using QWidget::QWidget;
    QString hintAt(QPoint point) const override {
        return point.x() < 10 ? QStringLiteral("left") : QString();
    }
};

class HintFinder : public ::testing::Test {
  protected:
    HintFinder() { root.resize(200, 100); }

    template <class View = QWidget>
    View* add(QWidget& parent, const QRect& frame, const QString& hint) {
        auto* view = new View(&parent);
        view->setGeometry(frame);
        setSvHint(*view, hint);
        view->show();
        return view;
    }

    HintedView at(int x, int y) {
        root.show();
        return findHinted({x, y}, root);
    }

    QWidget root;
};

TEST_F(HintFinder, finds_nothing_where_nothing_bears_a_text) {
    add(root, {0, 0, 50, 50}, {});

    EXPECT_EQ(at(10, 10), HintedView{});
}

TEST_F(HintFinder, prefers_the_innermost_view) {
    QWidget* outer = add(root, {10, 10, 80, 80}, "outer");
    QWidget* inner = add(*outer, {10, 10, 20, 20}, "inner");

    EXPECT_EQ(at(25, 25), (HintedView{inner, "inner"}));
    EXPECT_EQ(at(60, 60), (HintedView{outer, "outer"}));
    EXPECT_EQ(at(5, 5), HintedView{});
}

TEST_F(HintFinder, prefers_the_frontmost_of_views_on_top_of_each_other) {
    QWidget* first = add(root, {0, 0, 50, 50}, "first");
    QWidget* second = add(root, {0, 0, 50, 50}, "second");
    EXPECT_EQ(at(10, 10), (HintedView{second, "second"}));

    first->raise();

    EXPECT_EQ(at(10, 10), (HintedView{first, "first"}));
}

TEST_F(HintFinder, looks_through_a_view_in_front_that_bears_no_text) {
    QWidget* behind = add(root, {0, 0, 50, 50}, "behind");
    add(root, {0, 0, 50, 50}, {});

    EXPECT_EQ(at(10, 10), (HintedView{behind, "behind"}));
}

TEST_F(HintFinder, takes_the_text_of_what_is_around_a_view_without_one) {
    QWidget* outer = add(root, {10, 10, 80, 80}, "outer");
    add(*outer, {0, 0, 20, 20}, {});

    EXPECT_EQ(at(15, 15), (HintedView{outer, "outer"}));
}

TEST_F(HintFinder, counts_views_that_let_the_mouse_through) {
    QWidget* label = add(root, {0, 0, 50, 50}, "label");
    label->setAttribute(Qt::WA_TransparentForMouseEvents);

    EXPECT_EQ(at(10, 10), (HintedView{label, "label"}));
}

TEST_F(HintFinder, counts_neither_a_hidden_view_nor_its_children) {
    QWidget* tab = add(root, {0, 0, 100, 100}, "tab");
    add(*tab, {0, 0, 50, 50}, "child");

    tab->hide();

    EXPECT_EQ(at(10, 10), HintedView{});
}

TEST_F(HintFinder, leaves_out_the_part_of_a_view_that_lies_outside_of_its_parent) {
    QWidget* clip = add(root, {0, 0, 50, 50}, {});
    add(*clip, {0, 0, 100, 100}, "content");

    EXPECT_EQ(at(49, 49).text, "content");
    EXPECT_EQ(at(50, 50), HintedView{});
}

TEST_F(HintFinder, leaves_out_a_window_that_belongs_to_the_view) {
    QDialog dialog(&root);
    dialog.setGeometry(0, 0, 50, 50);
    setSvHint(dialog, "dialog");
    dialog.show();

    EXPECT_EQ(at(10, 10), HintedView{});
}

TEST_F(HintFinder, asks_a_view_with_places_for_that_of_the_point) {
    auto* view = add<Places>(root, {20, 0, 50, 50}, "whole");

    EXPECT_EQ(at(25, 10), (HintedView{view, "left"}));
    EXPECT_EQ(at(35, 10), (HintedView{view, "whole"}));
}

TEST_F(HintFinder, tells_two_places_of_one_view_apart) {
    add<Places>(root, {20, 0, 50, 50}, {});

    EXPECT_NE(at(25, 10), at(35, 10));
}

}  // namespace
}  // namespace testing
}  // namespace sonavault
