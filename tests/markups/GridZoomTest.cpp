#include "markups/GridLattice.h"
#include "markups/ZoomPan.h"

#include <vector>

#include <gtest/gtest.h>

namespace ravelcue::markups {
namespace {

TEST(Grid, SpacingIsAFifthATenthOrATwentiethOfTheWidth) {
    struct Case {
        const char* word;
        int width;
        int spacing;
    };
    for (const Case& c : {Case{"Course", 640, 128}, Case{"Medium", 640, 64}, Case{"Fine", 640, 32},
                          Case{"Course", 352, 70}, Case{"Medium", 352, 35}, Case{"Fine", 352, 17},
                          Case{"Fine", 19, 0}, Case{"Coarse", 640, 0}}) {
        EXPECT_EQ(gridSpacing(c.word, c.width), c.spacing) << c.word << " on " << c.width;
    }
}

TEST(Grid, LinesRunFromZeroUpToTheEdgeWhenItFallsOnTheLattice) {
    EXPECT_EQ(gridLines(128, 640), (std::vector<int>{0, 128, 256, 384, 512, 640}));
    EXPECT_EQ(gridLines(128, 480), (std::vector<int>{0, 128, 256, 384}));
    EXPECT_EQ(gridLines(70, 352), (std::vector<int>{0, 70, 140, 210, 280, 350}));
    EXPECT_EQ(gridLines(17, 352).back(), 340);
    EXPECT_TRUE(gridLines(0, 352).empty()) << "a picture too narrow gets no grid";
}

TEST(Zoom, TheRectangleShrinksATwentiethASideAtEachLevelAndStaysCentred) {
    struct Case {
        ZoomPan zoom;
        QSize picture;
        QRect shown;
    };
    for (const Case& c : {Case{{1, 0, 0}, {640, 480}, {32, 24, 576, 432}},
                          Case{{9, 0, 0}, {800, 600}, {360, 270, 80, 60}},
                          Case{{2, 0, 0}, {1920, 1080}, {192, 108, 1536, 864}},
                          Case{{1, -20, 10}, {640, 480}, {12, 34, 576, 432}},
                          Case{{0, 30, 0}, {640, 480}, {30, 0, 640, 480}},
                          Case{{1, 0, 0}, {350, 250}, {18, 12, 315, 225}}}) {
        EXPECT_EQ(zoomRect(c.zoom, c.picture), c.shown)
            << "level " << c.zoom.level << " on " << c.picture.width() << "x" << c.picture.height();
    }
}

TEST(Zoom, PanStepsStopShortOfTheLimitOfTheLevel) {
    struct Case {
        PanButton button;
        QSize picture;
        float panX, panY;
    };
    // At level 1 on 640x480 the limits are 32 across and 24 down; on 800x400, 40 and 20, which
    // a step would reach exactly.
    for (const Case& c :
         {Case{PanButton::Up, {640, 480}, 0, -20}, Case{PanButton::Down, {640, 480}, 0, 20},
          Case{PanButton::Left, {640, 480}, -30, 0}, Case{PanButton::Right, {640, 480}, 30, 0},
          Case{PanButton::Left, {800, 400}, -30, 0}, Case{PanButton::Down, {800, 400}, 0, 10}}) {
        ZoomPan zoom{1, 0, 0};
        PanOutcome last = PanOutcome::Moved;
        for (int i = 0; i < 5; ++i) {
            last = panStep(zoom, c.button, c.picture);
        }
        EXPECT_EQ(last, PanOutcome::Refused);
        EXPECT_EQ(zoom.PanX, c.panX);
        EXPECT_EQ(zoom.PanY, c.panY);
        EXPECT_EQ(panStep(zoom, PanButton::Center, {640, 480}), PanOutcome::Moved);
        EXPECT_EQ(zoom.PanX, 0.0F);
        EXPECT_EQ(zoom.PanY, 0.0F);
    }
    ZoomPan flat{0, 5, 5};
    for (PanButton b : {PanButton::Up, PanButton::Center}) {
        EXPECT_EQ(panStep(flat, b, {640, 480}), PanOutcome::NeedsZoom);
    }
    EXPECT_EQ(flat.PanX, 5.0F) << "nothing moves without zoom";
}

TEST(Zoom, TheWheelKeepsThePointUnderThePointerAndTheDragStaysInside) {
    const QSize picture(1920, 1080);
    const QPointF pointer(1500, 300);
    ZoomPan zoom;
    for (int turn = 0; turn < 6; ++turn) {
        const ZoomPan next = wheelZoom(zoom, 1, pointer, picture);
        EXPECT_EQ(next.level, zoom.level + 1);
        const QRect before = zoomRect(zoom, picture);
        const QRect after = zoomRect(next, picture);
        const double fractionBefore = (pointer.x() - before.x()) / before.width();
        const double fractionAfter = (pointer.x() - after.x()) / after.width();
        // Near the edge the limits win; up to there the point stays put.
        if (after.right() < picture.width() - 1) {
            EXPECT_NEAR(fractionAfter, fractionBefore, 0.01) << "turn " << turn;
        }
        EXPECT_GE(after.left(), 0);
        EXPECT_LE(after.right(), picture.width() - 1);
        zoom = next;
    }
    EXPECT_EQ(wheelZoom(zoom, 20, pointer, picture).level, kMaxZoom);
    EXPECT_EQ(wheelZoom(zoom, -20, pointer, picture).PanX, 0.0F) << "no zoom, no offset";

    const ZoomPan dragged = dragPan(ZoomPan{1, 0, 0}, QPointF(-500, 7), {640, 480});
    EXPECT_EQ(dragged.PanX, 32.0F) << "held at the limit";
    EXPECT_EQ(dragged.PanY, -7.0F) << "the picture follows the pointer";
}

TEST(Zoom, AControlPositionMapsIntoThePartOnShow) {
    EXPECT_EQ(pictureFromControl({400, 300}, {800, 600}, QRect(0, 0, 1920, 1080)),
              QPointF(960, 540));
    EXPECT_EQ(pictureFromControl({0, 0}, {800, 600}, QRect(192, 108, 1536, 864)),
              QPointF(192, 108));
    EXPECT_EQ(pictureFromControl({400, 300}, {800, 600}, QRect(192, 108, 1536, 864)),
              QPointF(960, 540));
}

} // namespace
} // namespace ravelcue::markups
