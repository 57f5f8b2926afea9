#include "PlayerTestSupport.h"
#include "platform/media/VideoView.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <QFileInfo>
#include <QFontInfo>
#include <QImageReader>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using ravelcue::media::OverlayLayer;
using ravelcue::media::TextOverlay;
using ravelcue::media::VideoView;
using ravelcue::media::ffmpeg::FfmpegPlayer;
using namespace ravelcue::test;

namespace {

bool isRed(QRgb pixel) {
    return qRed(pixel) > 190 && qGreen(pixel) < 70 && qBlue(pixel) < 70;
}

bool isYellow(QRgb pixel) {
    return qRed(pixel) > 170 && qGreen(pixel) > 170 && qBlue(pixel) < 90;
}

int countPixels(const QImage& image, const QRect& area, bool (*test)(QRgb)) {
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            count += test(image.pixel(x, y)) ? 1 : 0;
        }
    }
    return count;
}

// A red 12 x 8 marker at (200, 100) on an overlay of the given size.
QImage markerBitmap(QSize size) {
    QImage bitmap(size, QImage::Format_RGB32);
    bitmap.fill(Qt::black);
    QPainter(&bitmap).fillRect(200, 100, 12, 8, Qt::red);
    return bitmap;
}

class OverlayTest : public ::testing::Test {
protected:
    void SetUp() override {
        path = folder.file(QStringLiteral("wide.avi"));
        ASSERT_TRUE(makeVideo(path,
                              QStringLiteral("color=c=0x808080:size=320x180:rate=25:duration=1"),
                              {"-c:v", "mjpeg", "-q:v", "2"}));
    }
    TempFolder folder;
    QString path;
};

// On a wide picture in a square control, the shape layer and the texts sit on the picture
// pixels they name: in saved stills, on screen, and zoomed with the picture.
TEST_F(OverlayTest, MarkersSitOnTheirPicturePixelsInStillsOnScreenAndZoomed) {
    FfmpegPlayer player;
    ASSERT_TRUE(player.PlayerOpen(path).ok());
    player.SetBitmapOverlay(markerBitmap(QSize(320, 180)));
    player.SetTextOverlay(0, QStringLiteral("Ravelcue"), 20, 30, QStringLiteral("Arial Bold"), 12,
                          Qt::yellow);

    const QString still = folder.file(QStringLiteral("still.jpg"));
    ASSERT_TRUE(player.PlayerSaveFrame(still, 95).ok());
    QImageReader reader(still, "jpeg");
    const QImage saved = reader.read().convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(saved.size(), QSize(320, 180));
    EXPECT_TRUE(isRed(saved.pixel(205, 103)));
    EXPECT_NEAR(qGray(saved.pixel(100, 150)), 128, 6);
    EXPECT_GT(countPixels(saved, QRect(20, 30, 140, 30), isYellow), 40);
    EXPECT_EQ(countPixels(saved, QRect(0, 0, 18, 180), isYellow), 0);
    EXPECT_EQ(countPixels(saved, QRect(0, 0, 320, 28), isYellow), 0);

    // A smaller quality makes a smaller file of the same picture.
    const QString rough = folder.file(QStringLiteral("rough.jpg"));
    ASSERT_TRUE(player.PlayerSaveFrame(rough, 20).ok());
    EXPECT_LT(QFileInfo(rough).size(), QFileInfo(still).size());

    // 320 x 180 in 400 x 400: 400 x 225 from row 87, 1.25 control pixels a picture pixel.
    VideoView& view = *player.view();
    view.resize(400, 400);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view.currentFrame().isNull(); }, 30000));
    QImage screen = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_TRUE(isRed(screen.pixel(257, 87 + 130)));
    EXPECT_EQ(qGray(screen.pixel(200, 40)), 0); // the bar above the picture

    // The lower right quarter, enlarged 2.5 times: the marker moves with the picture.
    player.SetZoomRegion(160, 90, 160, 90);
    player.PlayerSetPos(player.PlayerGetPos() + 1);
    screen = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
    // Picture (200..211, 100..107) is (40..51, 10..17) in the region: control x 100..130,
    // y 112..132.
    EXPECT_TRUE(isRed(screen.pixel(115, 122)));
    EXPECT_FALSE(isRed(screen.pixel(140, 122)));
    EXPECT_FALSE(isRed(screen.pixel(257, 87 + 130)));
    player.SetZoomRegion(0, 0, 0, 0);

    // Mouse positions come as if the picture filled the control.
    QSignalSpy presses(&view, &VideoView::mousePressed);
    QTest::mousePress(&view, Qt::LeftButton, Qt::ShiftModifier, QPoint(257, 217));
    ASSERT_EQ(presses.count(), 1);
    EXPECT_EQ(presses.at(0).at(0).toInt(), 1);
    EXPECT_EQ(presses.at(0).at(1).toInt(), 1);
    EXPECT_NEAR(presses.at(0).at(2).toDouble() * 320 / 400, 205.6, 1.0);
    EXPECT_NEAR(presses.at(0).at(3).toDouble() * 180 / 400, 104.0, 1.0);
    QSignalSpy doubleClicks(&view, &VideoView::PictureDoubleClick);
    QTest::mouseDClick(&view, Qt::LeftButton, Qt::NoModifier, QPoint(200, 200));
    EXPECT_EQ(doubleClicks.count(), 1);

    // An empty text clears its slot, and the picture shows it at once, stopped as it is.
    player.SetTextOverlay(0, QString(), 20, 30, QStringLiteral("Arial Bold"), 12, Qt::yellow);
    screen = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(countPixels(screen, QRect(0, 87, 400, 225), isYellow), 0);
}

// "Arial Bold" is found through fontconfig, and a bitmap larger than the picture (the overlay
// of a big pane) is laid on pixel for pixel, not squeezed onto the picture.
TEST_F(OverlayTest, TextFontResolvesAndLargeBitmapsAreNotStretched) {
    const QFont font = OverlayLayer::textFont(
        TextOverlay{QStringLiteral("x"), 0, 0, QStringLiteral("Arial Bold"), 12, Qt::white}, 180);
    const QFontInfo info(font);
    EXPECT_TRUE(info.family() == QStringLiteral("Arial") ||
                info.family() == QStringLiteral("Liberation Sans"))
        << info.family().toStdString();
    EXPECT_TRUE(info.bold());

    OverlayLayer layer;
    layer.setBitmap(markerBitmap(QSize(800, 600)));
    const QImage composed = layer.composed(QSize(320, 180));
    EXPECT_EQ(qAlpha(composed.pixel(205, 103)), 255);
    EXPECT_EQ(qAlpha(composed.pixel(199, 103)), 0);
    EXPECT_EQ(qAlpha(composed.pixel(205, 99)), 0);
}

} // namespace

// A layer brought up to date a part at a time composes to the same pixels as one built whole:
// the part of the bitmap handed over, a text moved out of it, and a text moved into it.
TEST(OverlayLayerParts, PartialChangesComposeAsTheWholeWould) {
    const QSize picture(640, 480);
    QImage bitmap = markerBitmap(picture);
    OverlayLayer parts;
    parts.setBitmap(bitmap.copy());
    parts.setText(3, TextOverlay{QStringLiteral("moving note"), 190, 95});
    parts.composed(picture);

    QPainter(&bitmap).fillRect(400, 300, 30, 30, Qt::blue);
    QPainter(&bitmap).fillRect(200, 100, 12, 8, Qt::black);
    parts.updateBitmap(bitmap, QRect(200, 100, 230, 230));
    parts.setText(3, TextOverlay{QStringLiteral("moving note"), 20, 400});
    parts.setText(5, TextOverlay{QStringLiteral("new"), 405, 305, QStringLiteral("Arial Bold"), 12,
                                 Qt::yellow});

    OverlayLayer whole;
    whole.setBitmap(bitmap);
    whole.setText(3, TextOverlay{QStringLiteral("moving note"), 20, 400});
    whole.setText(5, TextOverlay{QStringLiteral("new"), 405, 305, QStringLiteral("Arial Bold"), 12,
                                 Qt::yellow});
    EXPECT_TRUE(parts.composed(picture) == whole.composed(picture));

    QPainter(&bitmap).fillRect(0, 0, 5, 5, Qt::green);
    EXPECT_TRUE(parts.composed(picture) == whole.composed(picture))
        << "the layer keeps its own copy of the bitmap";
}
