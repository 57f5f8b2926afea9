#include "MarkupsWindow.h"
#include "platform/media/VideoView.h"
#include "support/MediaFiles.h"

#include <cmath>

#include <QAction>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

constexpr std::int32_t kRed = 255;
constexpr std::int32_t kBlue = 16711680;
constexpr std::int32_t kYellow = 65535;

// A second of 1920x1080 video open in the single view, paused on its first frame.
class HdClip : public testing::Test {
protected:
    void SetUp() override {
        const QString clip = w.videos(QStringLiteral("hd.avi"));
        ASSERT_TRUE(makeVideo(clip, QStringLiteral("testsrc2=size=1920x1080:rate=25:duration=1"),
                              {"-c:v", "mjpeg", "-q:v", "6"}));
        w.openVideo(clip);
        ASSERT_EQ(w.fixture.prompts.texts(), QStringList());
        w.waitShown();
        ASSERT_EQ(w.view(0).pictureSize(), QSize(1920, 1080));
    }
    void colour(const char* key) { w.fixture.click(QStringLiteral("Toolbar2_Color_") + key); }
    bool eraseLastEnabled() { return w.fixture.find<QAction>("Toolbar2_Erase_Last")->isEnabled(); }

    MarkupsWindow w;
};

TEST_F(HdClip, EveryToolLandsUnderThePointerAtAnyWindowSizeAndZoom) {
    struct Stroke {
        const char* tool;
        QPointF from, to;
        QPoint covered;    // a pixel the marker must cover
        QPoint notCovered; // one a plain line between the points would cover, this one must not
    };
    colour("red");
    const Stroke strokes[] = {
        {"Line", {100, 100}, {700, 400}, {400, 250}, {}},
        {"Vline", {900, 100}, {1300, 500}, {900, 300}, {1100, 300}},
        {"Hline", {100, 600}, {700, 900}, {400, 600}, {400, 750}},
        {"Rectangle", {1000, 600}, {1400, 900}, {1200, 900}, {1200, 750}},
        {"Ellipse", {1500, 100}, {1900, 500}, {1700, 100}, {1700, 300}},
        {"Freehand", {1500, 700}, {1800, 1000}, {1650, 850}, {}},
    };
    for (const Stroke& s : strokes) {
        w.tool(s.tool);
        w.drag(0, s.from, s.to);
        EXPECT_TRUE(w.shows(0, s.covered, kRed)) << s.tool;
        if (!s.notCovered.isNull()) {
            EXPECT_FALSE(w.shows(0, s.notCovered, kRed)) << s.tool;
        }
    }
    EXPECT_TRUE(eraseLastEnabled());

    // A bigger window: the picture is larger on screen and the pointer still draws under itself.
    w.fixture.window().resize(w.fixture.window().size() + QSize(300, 200));
    QCoreApplication::processEvents();
    colour("blue");
    w.tool("Hline");
    w.drag(0, {200, 1000}, {600, 1000});
    EXPECT_TRUE(w.shows(0, {400, 1000}, kBlue));

    // Zoomed in nine levels by the wheel around a point: the picture there stays under the
    // pointer, and what is drawn lands under it.
    w.wheel(0, {500, 250}, 9);
    const QRect shown = w.view(0).zoomRegion();
    EXPECT_EQ(shown.size(), QSize(192, 108));
    EXPECT_TRUE(shown.contains(QPoint(500, 250)));
    w.tool("Line");
    // Away from the point the wheel turned at, which alone stays where it was on screen.
    w.drag(0, {520, 290}, {580, 290});
    EXPECT_TRUE(w.shows(0, {550, 290}, kBlue));
    const QImage screen = w.view(0).grab().toImage();
    const QRgb pointer = screen.pixel(w.onScreen(0, {550.5, 290.5}).toPoint());
    EXPECT_TRUE(qBlue(pointer) > 200 && qRed(pointer) < 60 && qGreen(pointer) < 60)
        << "the line is on screen where the pointer drew it: " << std::hex << pointer;
}

TEST_F(HdClip, EraseLastAndCtrlZTakeTheAngleWithItsReadingAndRestoreWhatLayUnder) {
    colour("green");
    w.tool("Angle");
    w.drag(0, {500, 500}, {800, 500});
    w.moveTo(0, {500, 300});
    w.press(0, {500, 300});
    w.release(0, {500, 300});
    const media::TextOverlay& reading = w.view(0).overlay().text(0);
    EXPECT_EQ(reading.text, QStringLiteral("-90.0°"));
    EXPECT_EQ(reading.color, QColor(255, 255, 0));
    EXPECT_FALSE(w.fixture.find<QAction>("Toolbar2_Angle")->isChecked());
    EXPECT_TRUE(w.shows(0, {650, 500}, 65280));
    EXPECT_TRUE(w.shows(0, {500, 400}, 65280));

    w.fixture.click(QStringLiteral("Toolbar2_Erase_Last"));
    EXPECT_EQ(w.view(0).overlay().text(0).text, QString());
    EXPECT_FALSE(w.shows(0, {650, 500}, 65280));
    EXPECT_FALSE(w.shows(0, {500, 400}, 65280));
    EXPECT_FALSE(eraseLastEnabled());

    // Erase Last and Ctrl+Z give back the pixels under a removed shape.
    const QImage bare = w.shownPicture(0);
    colour("red");
    w.tool("Hline");
    w.drag(0, {100, 500}, {1800, 500});
    colour("blue");
    w.tool("Rectangle");
    w.drag(0, {800, 500}, {1000, 700}); // its top edge lies on the line
    ASSERT_TRUE(w.shows(0, {900, 500}, kBlue));

    w.fixture.click(QStringLiteral("Toolbar2_Erase_Last"));
    EXPECT_TRUE(w.shows(0, {900, 500}, kRed)) << "the line under the rectangle is whole again";
    EXPECT_EQ(w.shownPicture(0).pixel(1000, 600), bare.pixel(1000, 600));

    w.fixture.window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w.fixture.window()));
    QTest::keyClick(&w.fixture.window(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(w.shownPicture(0).pixel(900, 500), bare.pixel(900, 500)) << "Ctrl+Z took the line";
    EXPECT_FALSE(eraseLastEnabled());

    w.tool("Line");
    w.drag(0, {10, 10}, {300, 10});
    w.fixture.click(QStringLiteral("Toolbar2_Erase"));
    EXPECT_EQ(w.shownPicture(0).pixel(150, 10), bare.pixel(150, 10)) << "Erase takes everything";
}

TEST_F(HdClip, ANoteIsTypedOnOneLineAndPlacedWhereTheClickIs) {
    w.tool("Text");
    auto* input = w.dialog("frmTextInput");
    ASSERT_NE(input, nullptr);
    EXPECT_EQ(input->windowTitle(), QStringLiteral("Enter Text"));
    EXPECT_TRUE(input->findChild<QRadioButton*>("optYellow")->isChecked());
    auto* note = input->findChild<QPlainTextEdit*>("txtNote");
    note->insertPlainText(QStringLiteral("cue\r\nhere"));
    EXPECT_EQ(note->toPlainText(), QStringLiteral("cuehere"));
    input->findChild<QRadioButton*>("optBlue")->setChecked(true);
    input->findChild<QPushButton*>("cmdOK")->click();

    w.moveTo(0, {300, 300});
    EXPECT_EQ(w.view(0).overlay().text(0).text, QStringLiteral("cuehere")) << "the note follows";
    w.press(0, {600, 400});
    w.release(0, {600, 400});
    const media::TextOverlay& placed = w.view(0).overlay().text(0);
    EXPECT_EQ(placed.x, 600);
    EXPECT_EQ(placed.y, 385);
    EXPECT_FALSE(w.fixture.find<QAction>("Toolbar2_Text")->isChecked());
    const QImage shown = w.shownPicture(0);
    int blue = 0;
    for (int y = 385; y < 460; ++y) {
        for (int x = 600; x < 800; ++x) {
            blue += (shown.pixel(x, y) | 0xFF000000u) == MarkupsWindow::rgbOf(kBlue) ? 1 : 0;
        }
    }
    EXPECT_GT(blue, 50) << "the note's letters are on the picture";

    // An empty note is a Cancel: nothing waits and the button comes up.
    w.tool("Text");
    w.dialog("frmTextInput")->findChild<QPushButton*>("cmdOK")->click();
    EXPECT_FALSE(w.fixture.find<QAction>("Toolbar2_Text")->isChecked());
    w.press(0, {100, 100});
    EXPECT_EQ(w.view(0).overlay().text(1).text, QString());
}

TEST_F(HdClip, TheGridLeavesTheMarkersWholeAndTheZoomWindowKeepsItsLimits) {
    colour("yellow");
    w.tool("Vline");
    w.drag(0, {384, 100}, {384, 900});
    w.fixture.click(QStringLiteral("mnuGrid_0"));
    const std::int32_t grey = markups::kGridColour;
    EXPECT_TRUE(w.shows(0, {768, 1000}, grey)) << "Coarse: a fifth of 1920";
    EXPECT_TRUE(w.shows(0, {1000, 384}, grey));
    EXPECT_TRUE(w.shows(0, {384, 500}, kYellow)) << "markers stay on top";
    w.fixture.click(QStringLiteral("mnuGrid_2"));
    EXPECT_TRUE(w.shows(0, {96, 1000}, grey)) << "Fine adds a twentieth";
    w.fixture.click(QStringLiteral("mnuGrid_3"));
    EXPECT_FALSE(w.shows(0, {768, 1000}, grey));
    EXPECT_FALSE(w.shows(0, {96, 1000}, grey));
    EXPECT_TRUE(w.shows(0, {384, 500}, kYellow)) << "Remove cuts no gap";

    // The zoom window steps and pans within its limits.
    w.fixture.click(QStringLiteral("mnuZoomPan"));
    auto* zoom = w.dialog("frmZoomPan");
    ASSERT_NE(zoom, nullptr);
    EXPECT_EQ(zoom->windowTitle(), QStringLiteral("Zoom/Pan Control"));
    auto pan = [&](int i) {
        zoom->findChild<QPushButton*>(QStringLiteral("cmdPan_%1").arg(i))->click();
    };
    pan(4);
    EXPECT_EQ(
        w.fixture.prompts.texts(),
        QStringList{QStringLiteral("To enable Pan controls,\nfirst adjust the Zoom control.")});
    auto* slider = zoom->findChild<QSlider*>("Slider1");
    slider->setValue(1);
    EXPECT_EQ(w.view(0).zoomRegion(), QRect(96, 54, 1728, 972)) << "a twentieth off each side";
    for (int i = 0; i < 8; ++i) {
        pan(0); // up, limit 54
    }
    EXPECT_EQ(w.view(0).zoomRegion().topLeft(), QPoint(96, 4));
    zoom->findChild<QPushButton*>("cmdReset")->click();
    EXPECT_EQ(slider->value(), 0);
    EXPECT_TRUE(w.view(0).zoomRegion().isEmpty());
    slider->setValue(3);
    zoom->findChild<QPushButton*>("cmdOK")->click();
    EXPECT_TRUE(w.view(0).zoomRegion().isEmpty()) << "OK ends the zoom";
    QCoreApplication::processEvents();
    EXPECT_EQ(w.dialog("frmZoomPan"), nullptr);
}

// Not a test of its own: under a real X display (tools/screenshot-markups) it leaves a picture
// of a paused frame with every tool used and the zoom window open.
TEST_F(HdClip, Screenshot) {
    const QString out = qEnvironmentVariable("RAVELCUE_SCREENSHOT");
    if (out.isEmpty()) {
        GTEST_SKIP() << "RAVELCUE_SCREENSHOT names the picture to write";
    }
    w.fixture.window().move(0, 0);
    w.fixture.window().settings().MarkerWidth = 4;
    colour("red");
    w.tool("Line");
    w.drag(0, {150, 900}, {900, 300});
    w.tool("Vline");
    w.drag(0, {1000, 150}, {1000, 950});
    colour("green");
    w.tool("Hline");
    w.drag(0, {150, 760}, {900, 760});
    w.tool("Rectangle");
    w.drag(0, {1150, 200}, {1500, 450});
    colour("yellow");
    w.tool("Ellipse");
    w.drag(0, {1200, 600}, {1700, 900});
    colour("magaenta");
    w.tool("Freehand");
    w.press(0, {200, 200});
    for (int i = 1; i <= 40; ++i) {
        w.moveTo(0, {200.0 + i * 12, 200 + 80 * std::sin(i / 4.0)}, Qt::LeftButton);
    }
    w.release(0, {680, 200});
    colour("white");
    w.tool("Angle");
    w.drag(0, {950, 880}, {1250, 880});
    w.moveTo(0, {1100, 680});
    w.press(0, {1100, 680});
    w.release(0, {1100, 680});
    w.tool("Text");
    auto* input = w.dialog("frmTextInput");
    input->findChild<QPlainTextEdit*>("txtNote")->setPlainText(QStringLiteral("Cue ball here"));
    input->findChild<QPushButton*>("cmdOK")->click();
    w.moveTo(0, {1250, 560});
    w.press(0, {1250, 560});
    w.release(0, {1250, 560});
    w.fixture.click(QStringLiteral("mnuGrid_0"));
    w.fixture.click(QStringLiteral("mnuZoomPan"));
    auto* zoom = w.dialog("frmZoomPan");
    zoom->move(w.fixture.window().frameGeometry().topRight() + QPoint(10, 0));
    zoom->findChild<QSlider*>("Slider1")->setValue(2);
    QTest::qWait(500);
    const QPixmap screen = QGuiApplication::primaryScreen()->grabWindow(0);
    ASSERT_TRUE(screen.save(out));
}

} // namespace
} // namespace ravelcue::test
