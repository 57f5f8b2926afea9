#include "playback/PlaybackRules.h"

#include <gtest/gtest.h>

namespace ravelcue::playback {
namespace {

TEST(PlaybackRules, CommandsReachTheShownPlayerOrEveryMemberInOrder) {
    AppState state;
    state.PlayerEnable = {true, false, true, true};
    state.SelectedPlayer = 1;
    state.ReferencePlayer = 2;
    state.PlayerView = "SinglePlayer";
    // A single view addresses the selected player even when it holds no file.
    EXPECT_EQ(activePlayers(state), std::vector<int>{1});
    EXPECT_EQ(indexPlayer(state), 1);
    state.PlayerView = "QuadPlayer";
    EXPECT_EQ(activePlayers(state), (std::vector<int>{0, 2, 3}));
    EXPECT_EQ(indexPlayer(state), 2);
}

TEST(PlaybackRules, SpeedListAndTimeTexts) {
    EXPECT_EQ(speedRate(0), 4.0);
    EXPECT_EQ(speedRate(kNormalSpeedIndex), 1.0);
    EXPECT_EQ(speedRate(4), 0.25);
    EXPECT_FALSE(speedRate(-1));
    EXPECT_FALSE(speedRate(5));

    EXPECT_EQ(positionText(0, 12340), "Position=.00/12.34");
    EXPECT_EQ(positionText(61500, 125004.9), "Position=61.50/125.00");
    EXPECT_EQ(sliderStep(12340), 123);
    EXPECT_EQ(sliderStep(49), 0) << "a video shorter than 50 ms has no step";
    EXPECT_EQ(sliderStep(150), 2);
    EXPECT_EQ(sliderStep(250), 2) << "ties go to the even step";
    EXPECT_EQ(secondsText(123), "12.30");
    EXPECT_EQ(secondsText(5), ".50");

    EXPECT_EQ(sizeText(640, 480, 370, 12340), "Size:640x480, Fps:30");
    EXPECT_EQ(sizeText(1920, 1080, 601, 10010), "Size:1920x1080, Fps:60");
    EXPECT_EQ(sizeText(0, 0, 0, 0), "Size:0x0, Fps:") << "no rate without a duration";
}

TEST(PlaybackRules, TypesAreKnownByExtensionInAnyCase) {
    EXPECT_EQ(videoFileType("/v/match1(Cam1).avi"), "avi");
    EXPECT_EQ(videoFileType("/v/PHONE.MP4"), "mp4");
    EXPECT_EQ(videoFileType("C:/v/clip.Mov"), "mov");
    EXPECT_EQ(videoFileType("/v/clip.mkv"), "mkv");
    EXPECT_EQ(videoFileType("/v/old.WMV"), "wmv");
    EXPECT_FALSE(videoFileType("/v/clip.mpg"));
    EXPECT_FALSE(videoFileType("/v.avi/clip"));
    EXPECT_FALSE(videoFileType("/v/avi"));

    EXPECT_EQ(stepKind("avi"), StepKind::Frame);
    EXPECT_EQ(stepKind("mkv"), StepKind::Frame);
    EXPECT_EQ(stepKind("wmv"), StepKind::Time);
    EXPECT_EQ(stepKind("img"), StepKind::None);
    EXPECT_EQ(stepKind(""), StepKind::None);
}

TEST(PlaybackRules, RegionIsDrawnWithShiftAndPutInForceOnlyWhenShiftIsHeldAtTheRelease) {
    Region region;
    regionPress(region, 1, kShiftAlone, 30);
    regionMove(region, kShiftAlone, 45);
    regionMove(region, kShiftAlone, 20); // left of the start: the length stays
    EXPECT_EQ(region.SelStart, 30);
    EXPECT_EQ(region.SelLength, 15);
    regionRelease(region, 0);
    EXPECT_FALSE(region.RegionActive) << "Shift let go first: drawn, not in force";
    regionRelease(region, kShiftAlone);
    EXPECT_TRUE(region.RegionActive);
    EXPECT_FALSE(region.endedAt(44));
    EXPECT_TRUE(region.endedAt(45));

    // A plain drag, or Shift with Ctrl, leaves the region alone.
    regionPress(region, 1, 0, 70);
    regionMove(region, 3, 90);
    regionRelease(region, 3);
    EXPECT_EQ(region.SelStart, 30);
    EXPECT_EQ(region.SelLength, 15);

    // Shift and a press without a drag leaves a region of no length in force.
    regionPress(region, 1, kShiftAlone, 50);
    regionRelease(region, kShiftAlone);
    EXPECT_EQ(region.SelLength, 0);
    EXPECT_TRUE(region.endedAt(50));
    EXPECT_FALSE(region.endedAt(49));

    regionPress(region, kRightButton, 0, 80);
    EXPECT_EQ(region.SelStart, 0);
    EXPECT_FALSE(region.RegionActive);
    EXPECT_FALSE(region.endedAt(80));
}

} // namespace
} // namespace ravelcue::playback
