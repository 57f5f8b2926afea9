#include "WindowFixture.h"
#include "platform/media/VideoView.h"

#include <QFrame>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

class Layout : public ::testing::Test {
protected:
    Layout() {
        fixture.answeredUpdateQuestion();
        fixture.enableCamera(0);
        fixture.start();
        start = fixture.window().size();
    }

    QRect geometryOf(const QString& name) { return fixture.find<QWidget>(name)->geometry(); }
    void resizeBy(int dx, int dy) {
        fixture.window().resize(start.width() + dx, start.height() + dy);
        QCoreApplication::processEvents();
    }

    WindowFixture fixture;
    QSize start;
};

TEST_F(Layout, StartsAtTheDesignSizeAndThePanesFollowTheWindow) {
    // 14600 by 11100 twips at 96 dots an inch.
    EXPECT_EQ(start, QSize(973, 740));
    EXPECT_EQ(fixture.window().state().BaseWidth, 14595);
    EXPECT_EQ(fixture.window().state().BaseHeight, 11100);
    EXPECT_EQ(geometryOf("picCapture_0"), QRect(152, 0, 800, 600));
    EXPECT_EQ(geometryOf("VideoCapXCapture_0"), QRect(0, 0, 800, 600));
    EXPECT_EQ(geometryOf("fmCapturetb").topLeft(), QPoint(152, 600));

    resizeBy(150, 90);
    EXPECT_EQ(geometryOf("picCapture_0"), QRect(152, 0, 950, 690));
    EXPECT_EQ(geometryOf("fmCapturetb").top(), 690);
    // The picture keeps 4:3 inside the wider pane: full height, centred.
    EXPECT_EQ(geometryOf("VideoCapXCapture_0"), QRect(15, 0, 920, 690));

    fixture.click("optCamSelect_4");
    EXPECT_EQ(geometryOf("picCapture_0"), QRect(152, 0, 475, 345));
    EXPECT_EQ(geometryOf("picCapture_1"), QRect(627, 0, 475, 345));
    EXPECT_EQ(geometryOf("picCapture_2"), QRect(152, 345, 475, 345));
    EXPECT_EQ(geometryOf("picCapture_3"), QRect(627, 345, 475, 345));
    EXPECT_EQ(geometryOf("fmCapturetb").top(), 690);
}

} // namespace
} // namespace ravelcue::test
