#include "core/PaneLayout.h"

#include "core/AppState.h"

#include <gtest/gtest.h>

namespace ravelcue {
namespace {

WindowMetrics grownBy(double dxPixels, double dyPixels) {
    WindowMetrics m;
    m.baseWidthTwips = 14595;
    m.baseHeightTwips = 11100;
    m.widthTwips = m.baseWidthTwips + dxPixels * 15;
    m.heightTwips = m.baseHeightTwips + dyPixels * 15;
    return m;
}

class PaneLayoutTest : public ::testing::Test {
protected:
    void enter(const std::string& word) { state.CurrentState = word; }

    AppState state;
    PaneGeometry geometry;
};

TEST_F(PaneLayoutTest, StartSizeGivesFullAndQuarterPanes) {
    enter("Live");
    PlacePanes(geometry, "SingleCamera");
    ASSERT_TRUE(FormResize(geometry, state, grownBy(0, 0)));
    EXPECT_EQ(geometry.picCapture[0], (PaneRect{152, 0, 800, 600}));
    EXPECT_EQ(geometry.captureVideo[0], (PaneRect{0, 0, 800, 600}));
    EXPECT_EQ(geometry.fmCapturetb.top, 600);
    EXPECT_EQ(geometry.fmTrainingTB.top, 600);

    state.CameraView = "QuadCamera";
    PlacePanes(geometry, "QuadCamera");
    ASSERT_TRUE(FormResize(geometry, state, grownBy(0, 0)));
    EXPECT_EQ(geometry.picCapture[0], (PaneRect{152, 0, 400, 300}));
    EXPECT_EQ(geometry.picCapture[1], (PaneRect{552, 0, 400, 300}));
    EXPECT_EQ(geometry.picCapture[2], (PaneRect{152, 300, 400, 300}));
    EXPECT_EQ(geometry.picCapture[3], (PaneRect{552, 300, 400, 300}));
    EXPECT_EQ(geometry.fmCapturetb.top, 600);
}

TEST_F(PaneLayoutTest, QuadPanesCloseTheirGridWhenTheWindowGrows) {
    enter("PlayVideoFile");
    state.PlayerView = "QuadPlayer";
    PlacePanes(geometry, "QuadPlayer");
    // 101 pixels wider: each pane takes half of 901, rounded to the even neighbour.
    ASSERT_TRUE(FormResize(geometry, state, grownBy(101, 41)));
    const auto& p = geometry.picPlayer;
    EXPECT_EQ(p[0].width, 450);
    EXPECT_EQ(p[0].height, 320);
    EXPECT_EQ(p[1].left, p[0].right()) << "pane 1 starts where pane 0 ends, not at 552";
    EXPECT_EQ(p[3].left, p[2].right());
    EXPECT_EQ(p[2].top, p[0].bottom());
    EXPECT_EQ(p[3].top, p[1].bottom());
    EXPECT_EQ(geometry.fmRunEditTB.top, p[2].bottom());
    EXPECT_EQ(geometry.Slider1.top, p[2].bottom() - 35);
    EXPECT_EQ(geometry.Slider1.width, p[2].width + p[3].width);

    // Halves of 903 and 643: here the even neighbour lies above, where cutting off would not go.
    ASSERT_TRUE(FormResize(geometry, state, grownBy(103, 43)));
    EXPECT_EQ(p[0].width, 452);
    EXPECT_EQ(p[0].height, 322);
}

TEST_F(PaneLayoutTest, SmallWindowKeepsItsLayout) {
    enter("Live");
    PlacePanes(geometry, "SingleCamera");
    ASSERT_TRUE(FormResize(geometry, state, grownBy(0, 0)));
    const PaneGeometry before = geometry;
    WindowMetrics tiny = grownBy(0, 0);
    tiny.widthTwips = 5000;
    EXPECT_FALSE(FormResize(geometry, state, tiny));
    tiny = grownBy(0, 0);
    tiny.heightTwips = 4000;
    EXPECT_FALSE(FormResize(geometry, state, tiny));
    EXPECT_EQ(geometry.picCapture[0], before.picCapture[0]);
    tiny.heightTwips = 5001;
    EXPECT_TRUE(FormResize(geometry, state, tiny)) << "the floor is 5000 itself";
}

TEST_F(PaneLayoutTest, PictureKeepsFourByThreeInsideItsPane) {
    enter("PlayVideoFile");
    state.VideoWidth[0] = 1280;
    state.VideoHeight[0] = 720;
    PlacePanes(geometry, "SinglePlayer");
    // Wider than 4:3: full height, centred, bars left and right.
    ASSERT_TRUE(FormResize(geometry, state, grownBy(400, 0)));
    EXPECT_EQ(geometry.playerVideo[0], (PaneRect{200, 0, 800, 600}));
    EXPECT_FLOAT_EQ(state.PlayerScaleX[0], 1280.0F / 800.0F);
    EXPECT_FLOAT_EQ(state.PlayerScaleY[0], 720.0F / 600.0F);
    // Taller than 4:3: full width, height 0.75 of it (not width / 1.333).
    ASSERT_TRUE(FormResize(geometry, state, grownBy(0, 200)));
    EXPECT_EQ(geometry.playerVideo[0].width, 800);
    EXPECT_EQ(geometry.playerVideo[0].height, 600);
    EXPECT_EQ(geometry.playerVideo[0].top, 100);
}

TEST_F(PaneLayoutTest, BreakSpeedPaneSplitsIntoTwoViewsWithTheStatusBetween) {
    enter("BreakSpeed");
    PlacePanes(geometry, "SingleCamera");
    ASSERT_TRUE(FormResize(geometry, state, grownBy(0, 0)));
    EXPECT_EQ(geometry.picBreakSpeed, (PaneRect{152, 0, 800, 600}));
    EXPECT_EQ(geometry.Picture1, (PaneRect{0, 0, 800, 286}));
    EXPECT_EQ(geometry.Picture2, (PaneRect{0, 320, 800, 286}));
    EXPECT_EQ(geometry.lblBreakStatusTop, 296);
    EXPECT_EQ(geometry.fmBreakSpeedTB.top, 600);
}

TEST_F(PaneLayoutTest, PanesOfTheModeFollowTheView) {
    enter("StopCaptureVideo");
    state.CameraView = "SingleCamera";
    state.SelectedCam = 3;
    EXPECT_EQ(panesOfMode(state), (std::vector<std::string>{"picCapture_3"}));
    state.CameraView = "QuadCamera";
    EXPECT_EQ(panesOfMode(state).size(), 4U);
    enter("LoadVideoFile");
    EXPECT_TRUE(panesOfMode(state).empty()) << "LoadVideoFile belongs to no group";
}

} // namespace
} // namespace ravelcue
