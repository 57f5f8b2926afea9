#include "markups/DrawingTools.h"

#include "LayerPixels.h"
#include "support/QtPrinters.h"

#include <gtest/gtest.h>

namespace ravelcue::markups {
namespace {

using test::layerColour;

constexpr std::int32_t kRed = 255;
constexpr std::int32_t kBlue = 16711680;

struct ReadingCase {
    const char* what;
    QPointF leg1, vertex, leg2;
    const char* reading;
};

class AngleReadingTest : public testing::TestWithParam<ReadingCase> {};

TEST_P(AngleReadingTest, ReadsDegreesWithOneDecimal) {
    const ReadingCase& c = GetParam();
    EXPECT_EQ(angleReading(c.leg1, c.vertex, c.leg2), QString::fromUtf8(c.reading)) << c.what;
}

// y grows downwards: clockwise on screen is positive.
INSTANTIATE_TEST_SUITE_P(
    Legs, AngleReadingTest,
    testing::Values(
        ReadingCase{"right, then down", {200, 100}, {100, 100}, {100, 200}, "90.0°"},
        ReadingCase{"right, then up", {200, 100}, {100, 100}, {100, 0}, "-90.0°"},
        ReadingCase{"straight through", {200, 100}, {100, 100}, {0, 100}, "180.0°"},
        ReadingCase{"a leg of no length", {100, 100}, {100, 100}, {150, 30}, "90.0°"},
        ReadingCase{"a third of a turn up", {200, 100}, {100, 100}, {50, 13.39746}, "-120.0°"}));

// One player's markups on a 640x480 picture with the tools, driven as the mouse would.
class Tools : public testing::Test {
protected:
    PlayerMarkups markups{QSize(640, 480)};
    DrawingTools tools;
    MarkerPen pen{kRed, 2};

    GestureResult drag(int shape, QPointF from, QPointF to) {
        tools.chooseTool(shape, &markups);
        tools.press(markups, 0, from, pen);
        tools.move(markups, 0, 1, (from + to) / 2);
        tools.move(markups, 0, 1, to);
        return tools.release(markups, to);
    }
    // Press, drag and release the first leg, move to the end of the second, press and release.
    GestureResult angle(QPointF vertex, QPointF leg1, QPointF leg2) {
        drag(ShapeAngle, vertex, leg1);
        GestureResult moved = tools.move(markups, 0, 0, leg2);
        tools.press(markups, 0, leg2, pen);
        GestureResult released = tools.release(markups, leg2);
        released.slotsExhausted = moved.slotsExhausted;
        return released;
    }
    GestureResult note(const QString& text, QPointF at) {
        tools.chooseTool(ShapeText, &markups);
        tools.noteReady(text, kBlue);
        tools.move(markups, 0, 0, at);
        return tools.press(markups, 0, at, pen);
    }
    std::int32_t at(int x, int y) { return layerColour(markups.layer(), x, y); }
};

TEST_F(Tools, VerticalAndHorizontalLinesKeepTheAxisOfThePress) {
    struct Case {
        int shape;
        QPointF end;
    };
    for (const Case& c : {Case{ShapeVline, {100, 180}}, Case{ShapeHline, {160, 100}},
                          Case{ShapeLine, {160, 180}}}) {
        drag(c.shape, {100, 100}, {160, 180});
        ASSERT_FALSE(markups.marks().empty());
        const MarkerShape& shape = *markups.marks().back().shape;
        EXPECT_EQ(shape.points.front(), QPointF(100, 100)) << c.shape;
        EXPECT_EQ(shape.points.back(), c.end) << c.shape;
    }
    EXPECT_EQ(at(100, 170), kRed) << "the vertical line is drawn where it was kept";
    EXPECT_EQ(at(150, 100), kRed) << "the horizontal line too";
}

TEST_F(Tools, TheBandFollowsTheMouseAndLeavesNothingBehind) {
    tools.chooseTool(ShapeRectangle, &markups);
    tools.press(markups, 0, {50, 50}, pen);
    tools.move(markups, 0, 1, {300, 300});
    EXPECT_EQ(at(300, 200), kRed) << "band at the first place";
    tools.move(markups, 0, 1, {100, 100});
    EXPECT_EQ(at(300, 200), 0) << "the band of the last place is gone";
    EXPECT_EQ(at(100, 80), kRed);
    EXPECT_TRUE(markups.marks().empty()) << "nothing is finished before the release";
    tools.release(markups, {100, 100});
    EXPECT_EQ(markups.marks().size(), 1U);
    EXPECT_FALSE(markups.preview().has_value());
}

TEST_F(Tools, AnEllipseOfNoHeightLeavesNoMark) {
    drag(ShapeEllipse, {50, 50}, {200, 50});
    EXPECT_TRUE(markups.marks().empty());
    drag(ShapeEllipse, {50, 50}, {200, 150});
    EXPECT_EQ(markups.marks().size(), 1U);
}

TEST_F(Tools, EraseLastTakesWholeShapesBackToTheFirstAndRestoresWhatLayUnder) {
    drag(ShapeLine, {10, 100}, {300, 100});
    pen.colour = kBlue;
    drag(ShapeRectangle, {100, 100}, {200, 200}); // its top edge covers the line
    drag(ShapeFreehand, {400, 400}, {450, 300});
    EXPECT_EQ(at(150, 100), kBlue);
    EXPECT_EQ(at(10, 100), kRed) << "earlier markers keep their colour";

    ASSERT_TRUE(markups.eraseLast());
    EXPECT_EQ(at(425, 350), 0) << "the whole freehand stroke goes at once";
    ASSERT_TRUE(markups.eraseLast());
    EXPECT_EQ(at(150, 100), kRed) << "the line under the rectangle shows again";
    EXPECT_EQ(at(200, 150), 0);
    ASSERT_TRUE(markups.eraseLast());
    EXPECT_EQ(at(150, 100), 0);
    EXPECT_FALSE(markups.eraseLast());
}

TEST_F(Tools, AnAngleShowsItsReadingWhileMovingAndIsErasedWithIt) {
    const GestureResult done = angle({100, 100}, {200, 100}, {100, 200});
    EXPECT_EQ(done.releaseButton, QStringLiteral("Angle"));
    EXPECT_EQ(tools.lngShape, ShapeNone) << "another angle needs the button again";
    EXPECT_EQ(markups.TextCount, 1);
    EXPECT_EQ(markups.slot(0).text, QStringLiteral("90.0°"));
    EXPECT_EQ(markups.slot(0).colour, kReadingColour);
    EXPECT_EQ(markups.slot(0).x, 110);
    EXPECT_EQ(markups.slot(0).y, 190);
    EXPECT_EQ(at(150, 100), kRed) << "first leg";
    EXPECT_EQ(at(100, 150), kRed) << "second leg";

    ASSERT_TRUE(markups.eraseLast());
    EXPECT_EQ(markups.slot(0).text, QString());
    EXPECT_EQ(markups.TextCount, 0) << "the reading's slot is free again";
    EXPECT_EQ(at(150, 100), 0);
    EXPECT_EQ(at(100, 150), 0);
}

TEST_F(Tools, ANoteFollowsThePointerAndIsPlacedBy15PixelsAboveTheClick) {
    tools.chooseTool(ShapeText, &markups);
    tools.noteReady(QStringLiteral("cue here"), kBlue);
    tools.move(markups, 0, 0, {300, 200});
    EXPECT_EQ(markups.slot(0).text, QStringLiteral("cue here")) << "the note follows";
    EXPECT_EQ(markups.slot(0).y, 185);
    const GestureResult placed = tools.press(markups, 0, {320, 240}, pen);
    EXPECT_EQ(placed.releaseButton, QStringLiteral("Text"));
    EXPECT_EQ(markups.slot(0).x, 320);
    EXPECT_EQ(markups.slot(0).y, 225);
    EXPECT_EQ(markups.TextCount, 1);
    EXPECT_FALSE(tools.m_Drawing);
    tools.move(markups, 0, 0, {10, 10});
    EXPECT_EQ(markups.slot(1).text, QString()) << "a placed note no longer follows";
    tools.press(markups, 0, {10, 10}, pen);
    EXPECT_EQ(markups.TextCount, 1) << "further clicks do nothing until a tool is chosen";
}

TEST_F(Tools, ThirtyNineTextsFillTheSlotsThenOneWarningAndTheNextNoteGoesToSlotZero) {
    for (int i = 0; i < kUsableTextSlots; ++i) {
        ASSERT_FALSE(note(QString::number(i), {10.0 + i, 20}).slotsExhausted) << i;
    }
    EXPECT_EQ(markups.TextCount, 39);
    EXPECT_EQ(markups.slot(38).text, QStringLiteral("38"));

    tools.chooseTool(ShapeText, &markups);
    tools.noteReady(QStringLiteral("late"), kBlue);
    tools.move(markups, 0, 0, {100, 300});
    EXPECT_EQ(markups.slot(39).text, QStringLiteral("late")) << "the moving note uses slot 39";
    EXPECT_TRUE(tools.press(markups, 0, {100, 300}, pen).slotsExhausted);
    EXPECT_EQ(markups.TextCount, 0);
    EXPECT_EQ(markups.slot(0).text, QStringLiteral("0")) << "nothing written on the warning";
    EXPECT_TRUE(tools.m_Drawing) << "the note is still in hand";

    tools.move(markups, 0, 0, {120, 300});
    EXPECT_FALSE(tools.press(markups, 0, {120, 300}, pen).slotsExhausted);
    EXPECT_EQ(markups.slot(0).text, QStringLiteral("late"));
    EXPECT_EQ(markups.slot(39).text, QString()) << "no copy of the moving note is left behind";
    EXPECT_EQ(markups.TextCount, 1);

    // Another player's slots are its own.
    PlayerMarkups other(QSize(640, 480));
    tools.chooseTool(ShapeText, &markups);
    tools.noteReady(QStringLiteral("elsewhere"), kBlue);
    EXPECT_FALSE(tools.press(other, 1, {5, 50}, pen).slotsExhausted);
    EXPECT_EQ(other.slot(0).text, QStringLiteral("elsewhere"));
}

TEST_F(Tools, AnAngleAtTheLimitWarnsOnceAndTakesSlotZero) {
    markups.TextCount = kUsableTextSlots;
    drag(ShapeAngle, {100, 100}, {200, 100});
    EXPECT_TRUE(tools.move(markups, 0, 0, {150, 200}).slotsExhausted);
    EXPECT_FALSE(tools.move(markups, 0, 0, {100, 200}).slotsExhausted);
    EXPECT_EQ(markups.slot(0).text, QStringLiteral("90.0°"));
}

TEST_F(Tools, ANewToolDropsTheBandInHand) {
    tools.chooseTool(ShapeLine, &markups);
    tools.press(markups, 0, {10, 10}, pen);
    tools.move(markups, 0, 1, {200, 10});
    tools.chooseTool(ShapeRectangle, &markups);
    EXPECT_EQ(at(100, 10), 0);
    EXPECT_TRUE(markups.marks().empty());
}

TEST_F(Tools, GridsLieUnderTheMarksAndRemoveTakesOnlyTheGrids) {
    drag(ShapeHline, {0, 129}, {639, 129});
    markups.addGrid(128);
    EXPECT_EQ(at(128, 300), kGridColour);
    EXPECT_EQ(at(128, 129), kRed) << "markers stay on top of the grid";
    markups.removeGrids();
    EXPECT_EQ(at(128, 300), 0);
    EXPECT_EQ(at(128, 129), kRed) << "no gap is cut through a marker";
    EXPECT_EQ(markups.marks().size(), 1U);
}

TEST_F(Tools, ChangesNameOnlyWhatMoved) {
    markups.takeChanges();
    tools.chooseTool(ShapeLine, &markups);
    tools.press(markups, 0, {10, 10}, pen);
    tools.move(markups, 0, 1, {20, 20});
    const PlayerMarkups::Changes changes = markups.takeChanges();
    EXPECT_TRUE(changes.layer.contains(QRect(10, 10, 11, 11)));
    EXPECT_LT(changes.layer.width(), 40) << "not the whole layer";
    EXPECT_TRUE(changes.textSlots.empty());
}

} // namespace
} // namespace ravelcue::markups
