#include "BreakSpeedWindow.h"
#include "Recordings.h"
#include "breakspeed/AudioAnalysis.h"
#include "breakspeed/BreakSpeedLogDialog.h"
#include "core/NumberFormat.h"
#include "support/SoundServer.h"

#include <csignal>
#include <sys/resource.h>

#include <QComboBox>
#include <QCursor>
#include <QDir>
#include <QFile>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

using breakspeed::WaveformBox;

constexpr std::uint64_t kSeed = 7;
const media::DemoBreak kShot = media::demoBreak(kSeed, 0);
// Where the shot's click and crash stand in the recording: 22 words of header, then frames.
const int kClickWord = 22 + 2 * static_cast<int>(std::llround(kShot.startSeconds * 44100));
const int kCrashWord =
    kClickWord +
    2 * static_cast<int>(std::llround(media::demoBreakDelaySeconds(kShot.speedMph) * 44100));

bool HasColour(const QImage& image, int column, QRgb colour) {
    for (int y = 0; y < image.height(); ++y) {
        if (image.pixel(column, y) != colour) {
            return false;
        }
    }
    return true;
}

class BreakSpeedPaneTest : public ::testing::Test {
protected:
    // The same answers whatever sound card the machine has: none.
    BreakSpeedPaneTest() { PrivateSoundServer::silenceProcess(); }
    BreakSpeedWindow w{kSeed};
};

TEST_F(BreakSpeedPaneTest, AMeasurementFromStartToStopReadsTheBreakPlayed) {
    EXPECT_FALSE(w.fixture.find<QWidget>("picBreakSpeed")->isHidden());
    EXPECT_FALSE(w.fixture.find<QWidget>("fmBreakSpeedTB")->isHidden());
    EXPECT_EQ(w.fixture.panel(1), "Break Speed");
    w.fixture.click("cmdStartBreakSpeed");
    EXPECT_EQ(w.fixture.panel(1), "Capturing Audio...");
    EXPECT_FALSE(w.fixture.find<QWidget>("cmdCalTone")->isEnabled());
    EXPECT_EQ(w.field("txtSpeed"), "");
    ASSERT_TRUE(QTest::qWaitFor([&] { return w.caption() == "Stop Capture"; }, 30000));
    EXPECT_EQ(w.fixture.text("lblBreakStatus"),
              "Mute speakers during audio capture!!!   Countdown - 00:59");
    w.fixture.click("cmdStartBreakSpeed");

    EXPECT_EQ(w.caption(), "Start Capture");
    EXPECT_EQ(w.fixture.panel(1), "Audio Capture Stopped");
    EXPECT_TRUE(w.fixture.find<QWidget>("cmdCalTone")->isEnabled());
    EXPECT_EQ(w.fixture.text("lblBreakStatus"), "Auto Peak Detect - 2 peaks found");
    EXPECT_EQ(w.statusColour(), QColor(0, 128, 0));
    const float delta = breakspeed::DeltaTime(kClickWord, kCrashWord);
    EXPECT_EQ(w.field("txtDeltaTime").toStdString(), Format(delta, "#0.0000"));
    EXPECT_EQ(w.field("txtSpeed").toStdString(), Format(kShot.speedMph, "#0.00"));
    EXPECT_EQ(w.field("txtEnergy").toStdString(),
              Format(breakspeed::Energy(w.field("txtSpeed").toFloat()), "#.00"));

    // Picture1 has the whole recording with the two peaks marked; Picture2 the stretch around.
    WaveformBox* picture1 = w.pane().picture1();
    EXPECT_TRUE(HasColour(picture1->canvas(), picture1->columnAt(kClickWord), qRgb(0, 255, 0)));
    EXPECT_TRUE(HasColour(picture1->canvas(), picture1->columnAt(kCrashWord), qRgb(255, 0, 255)));
    EXPECT_EQ(w.pane().picture2()->scale().width, kCrashWord - kClickWord + 10000);

    // Save hands the result to the log, whose OK writes it.
    w.fixture.click("cmdBreakSpeedLog");
    breakspeed::BreakSpeedLogDialog* log = w.pane().logDialog();
    ASSERT_NE(log, nullptr);
    EXPECT_EQ(log->findChild<QLineEdit*>("txtBreakSpeed")->text(), w.field("txtSpeed"));
    log->findChild<QLineEdit*>("txtName")->setText("Ann");
    const QString date = log->findChild<QLineEdit*>("txtDate")->text();
    QTest::mouseClick(log->findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(w.pane().logDialog(), nullptr);
    EXPECT_EQ(QString::fromStdString(breakspeed::test::ReadBytes(w.log().toStdString())),
              "\"" + date + "\",\"Ann\",\"" + w.field("txtSpeed") + "\",\"" + w.field("txtEnergy") +
                  "\"\r\n");
}

TEST_F(BreakSpeedPaneTest, ACaptureEndsByItsCountdownOrByEscape) {
    QStringList counts;
    auto* blink = w.fixture.window().findChild<QTimer*>("tmrBlink2");
    QObject::connect(blink, &QTimer::timeout, [&] {
        const QString status = w.fixture.text("lblBreakStatus");
        if (status.startsWith("Mute") && (counts.isEmpty() || !status.endsWith(counts.last()))) {
            counts << status.right(2);
        }
    });
    w.fixture.click("cmdStartBreakSpeed");
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return w.fixture.text("lblBreakStatus").startsWith("Auto Peak"); }, 60000));
    EXPECT_EQ(w.caption(), "Start Capture");
    ASSERT_EQ(counts.size(), 60);
    EXPECT_EQ(counts.first(), "59");
    EXPECT_EQ(counts.last(), "00");
    EXPECT_EQ(w.fixture.text("lblBreakStatus"), "Auto Peak Detect - 2 peaks found");

    // Escape clicks the button while a capture runs, and only then.
    w.fixture.window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w.fixture.window()));
    w.fixture.click("cmdStartBreakSpeed");
    ASSERT_TRUE(QTest::qWaitFor([&] { return w.caption() != "Start Capture"; }, 30000));
    QTest::keyClick(&w.fixture.window(), Qt::Key_Escape);
    EXPECT_EQ(w.caption(), "Start Capture");
    EXPECT_EQ(w.fixture.text("lblBreakStatus"), "Auto Peak Detect - 2 peaks found");
    QTest::keyClick(&w.fixture.window(), Qt::Key_Escape);
    EXPECT_EQ(w.microphone().captures(), 2);
    EXPECT_FALSE(w.microphone().IsCapturing());
}

TEST_F(BreakSpeedPaneTest, MarksByHandInBothViews) {
    w.measure();
    WaveformBox* picture1 = w.pane().picture1();
    WaveformBox* picture2 = w.pane().picture2();
    const QString energy = w.field("txtEnergy");

    // Select a stretch around the shot: the band shows during the drag and follows right only.
    const int from = picture1->columnAt(kClickWord - 3000);
    const int to = picture1->columnAt(kCrashWord + 3000);
    BreakSpeedWindow::press(picture1, from);
    QWidget* band = picture1->shape();
    EXPECT_TRUE(band->isVisible());
    EXPECT_EQ(picture1->cursor().shape(), Qt::CrossCursor);
    BreakSpeedWindow::move(picture1, BreakSpeedWindow::at(picture1, to));
    const int width = band->width();
    EXPECT_GT(width, 1);
    BreakSpeedWindow::move(picture1, BreakSpeedWindow::at(picture1, from - 5));
    EXPECT_EQ(band->width(), width);
    // The mouse can't leave the box while the button is down.
    BreakSpeedWindow::move(picture1, QPoint(-40, picture1->height() + 50));
    EXPECT_TRUE(picture1->rect().contains(picture1->mapFromGlobal(QCursor::pos())));
    BreakSpeedWindow::release(picture1, to);
    EXPECT_FALSE(band->isVisible());
    EXPECT_EQ(picture1->cursor().shape(), Qt::ArrowCursor);
    const double selStart = picture1->xAt(from);
    EXPECT_NEAR(picture2->scale().width, picture1->xAt(to) - selStart, 1);

    // Marks across the two sounds in Picture2 give the delta time and speed; energy stays.
    const int clickColumn = picture2->columnAt(kClickWord - std::round(selStart));
    const int crashColumn = picture2->columnAt(kCrashWord - std::round(selStart));
    BreakSpeedWindow::drag(picture2, clickColumn, crashColumn);
    const double wordsPerPixel = picture2->scale().width / picture2->canvas().width();
    EXPECT_NEAR(w.field("txtDeltaTime").toDouble(), breakspeed::DeltaTime(kClickWord, kCrashWord),
                wordsPerPixel / 88200 + 1e-4);
    EXPECT_FALSE(w.field("txtSpeed").isEmpty());
    EXPECT_EQ(w.field("txtEnergy"), energy);
    EXPECT_TRUE(HasColour(picture2->canvas(), clickColumn, qRgb(255, 0, 0)));

    // From right to left, or a click: the fields stay empty, the old marks are wiped.
    for (const auto& [first, last] : {std::pair{crashColumn, clickColumn}, std::pair{5, 5}}) {
        BreakSpeedWindow::drag(picture2, first, last);
        EXPECT_EQ(w.field("txtDeltaTime"), "");
        EXPECT_EQ(w.field("txtSpeed"), "");
        EXPECT_EQ(w.field("txtEnergy"), energy);
    }
}

TEST_F(BreakSpeedPaneTest, DistanceThatIsNoNumberTheThresholdListAndNoTone) {
    w.measure();
    const QString speed = w.field("txtSpeed");
    auto* distance = w.fixture.find<QLineEdit>("txtDistance");

    // Not a number: red, the speed of the old distance gone, and nothing for the log.
    distance->setText("4 8");
    EXPECT_EQ(distance->palette().color(QPalette::Text), QColor(Qt::red));
    EXPECT_EQ(w.field("txtSpeed"), "0.000");
    w.fixture.click("cmdBreakSpeedLog");
    ASSERT_EQ(w.fixture.prompts.shown().size(), 1U);
    EXPECT_TRUE(w.fixture.prompts.texts()[0].startsWith("The distance is not a number\n"));
    EXPECT_EQ(w.fixture.window().findChild<breakspeed::BreakSpeedLogDialog*>(), nullptr);
    w.fixture.prompts.clear();
    distance->setText("48");
    EXPECT_NE(distance->palette().color(QPalette::Text), QColor(Qt::red));
    EXPECT_EQ(w.field("txtSpeed").toStdString(),
              Format(w.field("txtSpeed").toDouble(), "#0.000")); // three decimals when edited

    // The list measures the file again, from disk.
    auto* threshold = w.fixture.find<QComboBox>("cboThreshold");
    threshold->setFocus();
    QTest::keyClick(threshold, Qt::Key_Down);
    EXPECT_EQ(threshold->currentIndex(), 3);
    EXPECT_EQ(w.fixture.text("lblBreakStatus"), "Auto Peak Detect - 2 peaks found");
    EXPECT_EQ(w.field("txtSpeed"), speed);
    QFile::remove(w.recording());
    QTest::keyClick(threshold, Qt::Key_Up);
    EXPECT_EQ(w.fixture.text("lblBreakStatus"), "No recording to analyse");
    EXPECT_EQ(w.field("txtSpeed"), speed);

    // Without a sound device there is no tone, and nothing else changes.
    w.fixture.click("cmdCalTone");
    EXPECT_EQ(w.fixture.prompts.texts(), QStringList{"Can't play tone!"});
    EXPECT_EQ(w.fixture.prompts.shown().back().icon, ui::MessageIcon::Information);
    EXPECT_EQ(w.field("txtDistance"), "48");
    EXPECT_EQ(w.microphone().captures(), 1);
}

// A read-only or full data folder: the old recording must not pass for a new one.
TEST_F(BreakSpeedPaneTest, ACaptureThatWritesNothingSaysSoAndShowsNoOldResult) {
    w.measure();
    ASSERT_FALSE(w.field("txtSpeed").isEmpty());
    w.microphone().refuseWrites(true);
    w.fixture.prompts.clear();
    w.fixture.click("cmdStartBreakSpeed");
    ASSERT_EQ(w.fixture.prompts.texts().size(), 1);
    const QStringList lines = w.fixture.prompts.texts()[0].split('\n');
    EXPECT_EQ(lines[0], "Audio capture could not start");
    EXPECT_TRUE(lines.value(1).startsWith(w.recording())) << lines.join('|').toStdString();
    EXPECT_EQ(w.caption(), "Start Capture");
    EXPECT_EQ(w.fixture.text("lblBreakStatus"), "No recording to analyse");
    for (const char* field : {"txtDeltaTime", "txtSpeed", "txtEnergy"}) {
        EXPECT_EQ(w.field(field), "") << field;
    }
    // Nor does the threshold list bring the old file back.
    auto* threshold = w.fixture.find<QComboBox>("cboThreshold");
    threshold->setFocus();
    QTest::keyClick(threshold, Qt::Key_Down);
    EXPECT_EQ(w.field("txtSpeed"), "");

    // A recording that ends on its own says why and is read as far as it went.
    w.microphone().refuseWrites(false);
    w.fixture.prompts.clear();
    w.fixture.click("cmdStartBreakSpeed");
    ASSERT_TRUE(QTest::qWaitFor([&] { return w.caption() == "Stop Capture"; }, 30000));
    emit w.microphone().captureFailed("Recording breakspeed.wav stopped: the disk is full");
    EXPECT_EQ(w.fixture.prompts.texts(),
              QStringList{"Recording breakspeed.wav stopped: the disk is full"});
    EXPECT_EQ(w.caption(), "Start Capture");
    EXPECT_EQ(w.fixture.text("lblBreakStatus"), "Auto Peak Detect - 2 peaks found");
}

// What a person sees after a measurement: both views and the status line. Under Xvfb with
// RAVELCUE_SCREENSHOT_DIR set, the picture is kept there.
TEST_F(BreakSpeedPaneTest, ScreenshotAfterAMeasurement) {
    w.measure();
    // Marks on the two sounds, as the rule found them.
    WaveformBox* picture2 = w.pane().picture2();
    BreakSpeedWindow::drag(picture2, picture2->columnAt(5000),
                           picture2->columnAt(kCrashWord - kClickWord + 5000));
    QCoreApplication::processEvents();
    const QImage shot = w.fixture.window().grab().toImage();
    const QRect picture1(w.pane().picture1()->mapTo(&w.fixture.window(), QPoint(0, 0)),
                         w.pane().picture1()->size());
    int dark = 0;
    for (int y = picture1.top(); y <= picture1.bottom(); ++y) {
        for (int x = picture1.left(); x <= picture1.right(); ++x) {
            dark += qGray(shot.pixel(x, y)) < 64 ? 1 : 0;
        }
    }
    EXPECT_GT(dark, picture1.width()); // the waveform is on screen, not only in the box's memory
    if (const QByteArray folder = qgetenv("RAVELCUE_SCREENSHOT_DIR"); !folder.isEmpty()) {
        EXPECT_TRUE(shot.save(QString::fromLocal8Bit(folder) + "/breakspeed-pane.png"));
    }
}

// The log on its own, over a file with entries of its own.
TEST(BreakSpeedLogDialog, EditsReachTheFileOnlyThroughASuccessfulOK) {
    TempFolder folder;
    ScriptedPrompts prompts;
    const std::string path = folder.file("BreakSpeedLog.txt").toStdString();
    const std::string before = "\"1/3/24\",\"Ann\",\"20\",\"8\"\r\n"
                               "\"1/3/24\",\"Bob\",\"21\",\"9\"\r\n"
                               "a \"note\" typed by hand\r\n"
                               "\"2/3/24\",\"Cy\",\"22\",\"10\"\r\n"
                               "\"2/3/24\",\"Di\",\"24\",\"11\"\r\n";
    breakspeed::test::WriteBytes(path, before);
    std::unique_ptr<breakspeed::BreakSpeedLogDialog> dialog;
    QTreeWidget* list = nullptr;
    auto open = [&] {
        dialog = std::make_unique<breakspeed::BreakSpeedLogDialog>(
            nullptr, QString::fromStdString(path), "27.26", "12.48", prompts);
        dialog->setAttribute(Qt::WA_DeleteOnClose, false);
        dialog->show();
        list = dialog->findChild<QTreeWidget*>("ListView1");
    };
    auto select = [&](std::initializer_list<int> rows) {
        list->clearSelection();
        for (const int row : rows) {
            list->topLevelItem(row)->setSelected(true);
        }
    };
    open();
    ASSERT_EQ(list->topLevelItemCount(), 5);
    EXPECT_EQ(list->topLevelItem(2)->text(0), "a \"note\" typed by hand");
    select({0, 3, 4}); // 20, 22 and 24
    dialog->cmdCalculate_Click();
    EXPECT_EQ(dialog->findChild<QLabel*>("lblSD")->text(), "2.00");
    select({1});
    dialog->cmdCalculate_Click();
    EXPECT_EQ(prompts.texts().last(),
              "You must select 2 or more breakspeeds for calculations to be performed.");
    // Two rows are selected, but the note has no speed: it is named, not miscounted.
    select({1, 2});
    dialog->cmdCalculate_Click();
    EXPECT_EQ(prompts.texts().last(),
              "You must select 2 or more breakspeeds for calculations to be performed.\n"
              "The break speed of these selected rows is not a number: 3");
    select({0, 2, 3});
    dialog->cmdCalculate_Click();
    EXPECT_EQ(dialog->findChild<QLabel*>("lblMean")->text(), "21.00");
    EXPECT_EQ(prompts.texts().last(), "The break speed of these selected rows is not a number "
                                      "and is left out of the figures: 3");

    // Rows apart from each other go, exactly those; Add empties the fields but the date.
    select({1, 3});
    dialog->cmdDelete_Click();
    dialog->findChild<QLineEdit*>("txtName")->setText("Ed");
    dialog->cmdAdd_Click();
    EXPECT_EQ(dialog->findChild<QLineEdit*>("txtBreakSpeed")->text(), "");
    const std::string after = "\"1/3/24\",\"Ann\",\"20\",\"8\"\r\n"
                              "a \"note\" typed by hand\r\n"
                              "\"2/3/24\",\"Di\",\"24\",\"11\"\r\n"
                              "\"" +
                              dialog->findChild<QLineEdit*>("txtDate")->text().toStdString() +
                              "\",\"Ed\",\"27.26\",\"12.48\"\r\n";

    // The disk fills up during the save (a file size limit fails the write as a full disk
    // would): OK says so, stays open, and the old log stands with nothing half-written beside.
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit tiny = saved;
    tiny.rlim_cur = 16;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tiny), 0);
    dialog->cmdOK_Click();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(prompts.texts().last().startsWith("The break speed log could not be saved"));
    EXPECT_EQ(breakspeed::test::ReadBytes(path), before);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              QStringList{"BreakSpeedLog.txt"});

    // With room again, OK writes the whole list; Cancel writes nothing.
    dialog->cmdOK_Click();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(breakspeed::test::ReadBytes(path), after);
    open();
    select({0, 1});
    dialog->cmdDelete_Click();
    dialog->cmdCancel_Click();
    EXPECT_EQ(breakspeed::test::ReadBytes(path), after);
}

} // namespace
} // namespace ravelcue::test
