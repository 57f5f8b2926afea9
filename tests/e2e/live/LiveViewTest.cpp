#include "app/WindowFixture.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/VideoView.h"
#include "platform/media/demo/DemoStamp.h"

#include <QRadioButton>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

class LiveView : public ::testing::Test {
protected:
    LiveView() {
        fixture.answeredUpdateQuestion();
        fixture.enableDemoDevices();
        fixture.start();
    }
    media::CaptureInstance& cam(int i) { return fixture.window().media().cam(i); }

    WindowFixture fixture{DemoDevices{}};
};

TEST_F(LiveView, DemoCamerasShowInSingleAndQuadViewAndReconnectForTrainingAndBack) {
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(cam(i).Connected()) << i;
        EXPECT_EQ(cam(i).GetVideoSize(), QSize(640, 480));
        ASSERT_TRUE(WindowFixture::waitForPicture(cam(i).view())) << "camera " << i;
    }
    EXPECT_FALSE(fixture.find<QWidget>("picCapture_0")->isHidden());
    EXPECT_TRUE(fixture.find<QWidget>("picCapture_1")->isHidden());

    fixture.click("optCamSelect_4");
    for (int i = 0; i < 4; ++i) {
        QWidget* pane = fixture.find<QWidget>(QStringLiteral("picCapture_%1").arg(i));
        EXPECT_TRUE(pane->isVisible()) << i;
        EXPECT_EQ(pane->size(), QSize(400, 300));
        EXPECT_EQ(cam(i).view()->size(), QSize(400, 300)) << "the picture fills its 4:3 pane";
    }
    // Every camera keeps delivering in the quad view, each with its own picture.
    const media::DemoStamp first = media::readDemoStamp(cam(0).view()->currentFrame());
    ASSERT_TRUE(first.valid);
    QTest::qWait(300);
    const media::DemoStamp later = media::readDemoStamp(cam(0).view()->currentFrame());
    ASSERT_TRUE(later.valid);
    EXPECT_GT(later.frameCounter, first.frameCounter);

    // Training reconnects the cameras to keep their frames; live lets go of them again.
    EXPECT_EQ(cam(0).RenderMode(), 0);
    EXPECT_TRUE(cam(0).FrameBytes().isEmpty()) << "live frames are only kept for training";

    fixture.click("cmdTraining");
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(cam(i).RenderMode(), 1) << i;
        EXPECT_TRUE(cam(i).Connected()) << i;
    }
    ASSERT_TRUE(QTest::qWaitFor([this] { return !cam(0).FrameBytes().isEmpty(); }, 10000));
    EXPECT_EQ(cam(0).FrameBytes().size(), 640 * 480 * 3);

    fixture.click("cmdShowLive");
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(cam(i).RenderMode(), 0) << i;
    }
    EXPECT_TRUE(WindowFixture::waitForPicture(cam(3).view()));
}

} // namespace
} // namespace ravelcue::test
