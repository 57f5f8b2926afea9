// Stroke training on the real engine with Demo Camera 1, whose arm carries targets of one colour
// and swings the wrist from side to side: the colour learnt from the calibration square, runs of
// both kinds judged tick by tick against the pose drawn, the voice heard on a private sound
// server, and the ways a run doesn't start or ends early.

#include "app/WindowFixture.h"
#include "core/AppState.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/LiveFrame.h"
#include "platform/media/VideoView.h"
#include "platform/media/demo/DemoScene.h"
#include "platform/media/demo/DemoStamp.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"
#include "support/SoundServer.h"
#include "training/Calibration.h"
#include "training/ColourBox.h"
#include "training/StrokeTraining.h"
#include "training/TrainParmsDialog.h"
#include "training/TrainingRules.h"
#include "training/TrainingRun.h"

#include <algorithm>
#include <map>
#include <set>

#include <QAudioDevice>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QMediaDevices>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

using training::Alarm;

constexpr QRgb kTarget = media::kDemoTargetColour;

class StrokeTraining : public ::testing::Test {
protected:
    // Silent: the window's sound goes nowhere, so that no sound server can hold a run up.
    static void SetUpTestSuite() { PrivateSoundServer::silenceProcess(); }

    StrokeTraining() {
        fixture.answeredUpdateQuestion();
        // Demo Camera 1 alone.
        fixture.enableDemoDevices(1);
        copySpokenCommands();
        fixture.start();
        fixture.click("cmdTraining");
    }

    void copySpokenCommands() {
        const QDir built(QStringLiteral(RAVELCUE_SOUNDS_DIR));
        const QDir sounds(fixture.program.path() + QStringLiteral("/Sounds"));
        QDir().mkpath(sounds.path());
        for (const QString& wav : built.entryList({QStringLiteral("*.wav")}, QDir::Files)) {
            QFile::copy(built.filePath(wav), sounds.filePath(wav));
        }
    }

    media::CaptureInstance& cam() { return fixture.window().media().cam(0); }
    const QImage& overlay() { return cam().view()->overlay().bitmap(); }
    training::StrokeTraining& training() {
        return *fixture.window().findChild<training::StrokeTraining*>();
    }
    QString caption(const QString& button) { return fixture.find<QPushButton>(button)->text(); }
    bool enabled(const QString& button) { return fixture.find<QPushButton>(button)->isEnabled(); }
    QTimer* timer(const QString& name) { return fixture.window().findChild<QTimer*>(name); }
    QString lastMessage() {
        return fixture.prompts.texts().isEmpty() ? QString() : fixture.prompts.texts().last();
    }

    void calibrate() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !cam().FrameBytes().isEmpty(); }, 10000));
        fixture.click("cmdCalibrate");
        ASSERT_TRUE(QTest::qWaitFor(
            [this] { return caption("cmdCalibrate") == "Start Calibration"; }, 20000));
    }

    // Starts a run of the option's kind; the test ticks it by hand from here on. Silent unless
    // asked, so that only the test of the voice plays into the sound server.
    training::TrainParmsDialog* openParameters() {
        fixture.click("cmdStartTraining");
        return training().run().parmsDialog();
    }
    void startRun(int option, training::AlarmType alarm = training::AlarmType::NoSound) {
        fixture.find<QComboBox>("cboAlarmType")->setCurrentIndex(static_cast<int>(alarm));
        training::TrainParmsDialog* dialog = openParameters();
        ASSERT_NE(dialog, nullptr);
        QTest::mouseClick(
            dialog->findChild<QRadioButton*>(QStringLiteral("Option2_%1").arg(option)),
            Qt::LeftButton);
        QTest::mouseClick(dialog->findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
        ASSERT_TRUE(timer("tmrTraining")->isActive());
        timer("tmrTraining")->stop();
    }

    // What a tick of the logic finds in the picture Demo Camera 1 drew at a moment of its clock.
    training::TickOutcome tickAt(std::uint32_t clockMs, int trainingType) {
        media::DemoScene scene(1, QSize(640, 480));
        const QByteArray bytes = media::liveFrameBytes(scene.render(0, clockMs));
        const training::LiveFrameView frame(
            {reinterpret_cast<const unsigned char*>(bytes.constData()), size_t(bytes.size())});
        return training::TrainingTick(frame, training().calibration().target(), trainingType,
                                      training::AlarmType::NoSound, training::kPiValue);
    }

    // The alarm the rule gives for the pose drawn at a moment of the camera's clock.
    Alarm alarmAt(std::uint32_t clockMs, int trainingType) {
        const media::DemoArmPose pose = media::demoArmPose(clockMs);
        const auto key = std::make_pair(pose.lowerTarget.x(), trainingType);
        if (const auto known = alarms_.find(key); known != alarms_.end()) {
            return known->second;
        }
        return alarms_[key] = tickAt(clockMs, trainingType).alarm;
    }

    // Ticks the run by hand over the arm's cycle, each tick's text against what the rule says
    // for the pictures that were newest around it, until every one of `wanted` was shown.
    void followTheArm(int trainingType, const std::set<QString>& wanted) {
        std::set<QString> seen;
        const auto deadline = std::chrono::steady_clock::now() +
                              std::chrono::milliseconds(media::kDemoArmCycleMs + 3000);
        while (seen != wanted && std::chrono::steady_clock::now() < deadline) {
            const std::uint32_t before = media::readDemoStamp(cam().view()->currentFrame()).clockMs;
            fixture.tick("tmrTraining");
            const std::uint32_t after = media::readDemoStamp(cam().view()->currentFrame()).clockMs;
            const QString shown = fixture.text("lblAlarm");
            // The tick read the newest frame kept, which may be one frame behind the picture.
            std::set<std::string> possible;
            for (std::uint32_t ms = before >= 34 ? before - 34 : 0; ms <= after; ++ms) {
                possible.insert(alarmAt(ms, trainingType).text);
            }
            EXPECT_TRUE(possible.count(shown.toStdString()))
                << "shown \"" << shown.toStdString() << "\" at clock " << before << ".." << after;
            if (!shown.isEmpty()) {
                seen.insert(shown);
                const QColor colour =
                    fixture.find<QLabel>("lblAlarm")->palette().color(QPalette::WindowText);
                EXPECT_EQ(colour, shown == "GOOD!!!" ? QColor(0, 128, 0) : QColor(255, 0, 0));
            }
            QTest::qWait(150);
        }
        EXPECT_EQ(seen, wanted);
    }

    // One tick of the run and the beeps it played.
    std::vector<double> beepsOfATick() {
        const auto started = ToneBus::Clock::now();
        fixture.tick("tmrTraining");
        std::vector<double> beeps;
        for (const ToneBus::Tone& tone :
             fixture.tones.tonesDuring(started, ToneBus::Clock::now())) {
            beeps.push_back(tone.frequencyHz);
        }
        return beeps;
    }

    WindowFixture fixture{DemoDevices{}};
    std::map<std::pair<int, int>, Alarm> alarms_;
};

// Runs that are listened to, on a sound server of the test's own.
class StrokeTrainingHeard : public StrokeTraining {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<PrivateSoundServer>(); }
    static void TearDownTestSuite() { server_.reset(); }

    // Whether the voice can be heard here: a sound server of the test's own and the spoken
    // commands the build made.
    static const char* noVoice() {
        if (!server_->running() || QMediaDevices::audioOutputs().isEmpty()) {
            return "no PulseAudio server to play into";
        }
        if (!QFile::exists(QStringLiteral(RAVELCUE_SOUNDS_DIR "/good.wav"))) {
            return "the build had no speech synthesizer";
        }
        return nullptr;
    }
    // How many samples of a recording sound more than the silence of the server's output.
    static int loud(const std::vector<qint16>& samples) {
        return static_cast<int>(std::count_if(samples.begin(), samples.end(),
                                              [](qint16 s) { return std::abs(s) > 1000; }));
    }

    static inline std::unique_ptr<PrivateSoundServer> server_;
};

TEST_F(StrokeTraining, NoRunBeforeACalibrationLearnsTheColourOfTheTargetInTheGreenSquare) {
    fixture.click("cmdStartTraining");
    EXPECT_EQ(lastMessage(), "You need to Calibrate the Target Color before start of training.");
    EXPECT_EQ(fixture.prompts.shown().back().icon, ui::MessageIcon::Information);
    EXPECT_EQ(training().run().parmsDialog(), nullptr);
    EXPECT_EQ(caption("cmdStartTraining"), "Start Training");

    ASSERT_TRUE(QTest::qWaitFor([this] { return !cam().FrameBytes().isEmpty(); }, 10000));
    const auto started = ToneBus::Clock::now();
    fixture.click("cmdCalibrate");
    EXPECT_EQ(lastMessage().left(44), "Place a sample of the color that will be use");
    EXPECT_EQ(caption("cmdCalibrate"), "Calibrating...");
    EXPECT_FALSE(enabled("cmdCalibrate"));
    EXPECT_FALSE(enabled("cmdStartTraining"));
    // The square's edge in green, its inside clear.
    EXPECT_EQ(QColor(overlay().pixel(300, 205)), QColor(0, 255, 0));
    EXPECT_EQ(QColor(overlay().pixel(305, 205)), QColor(Qt::black));

    ASSERT_TRUE(
        QTest::qWaitFor([this] { return caption("cmdCalibrate") == "Start Calibration"; }, 20000));
    std::vector<double> beeps;
    for (const ToneBus::Tone& tone : fixture.tones.tonesDuring(started, ToneBus::Clock::now())) {
        beeps.push_back(tone.frequencyHz);
    }
    EXPECT_EQ(beeps, (std::vector<double>{500, 600, 700, 800, 900, 1000, 1000}));
    EXPECT_TRUE(enabled("cmdCalibrate"));
    EXPECT_TRUE(enabled("cmdStartTraining"));
    EXPECT_FALSE(timer("tmrCalibrate")->isActive());
    EXPECT_EQ(QColor(overlay().pixel(300, 205)), QColor(Qt::black)) << "the square is gone";
    EXPECT_EQ(fixture.window().state().CurrentState, "StopTraining");

    auto* swatch = fixture.find<training::ColourBox>("picTargetColor");
    EXPECT_EQ(swatch->colour(), QColor(kTarget));
    EXPECT_EQ(swatch->toolTip(), "Target Color");
    QTest::mouseClick(swatch, Qt::LeftButton);
    // (30, 210, 70): hue 133.3, saturation 75, lightness 47.1.
    EXPECT_EQ(lastMessage(), "Calibrated Target Color Components R:30, G:210, B:70\n"
                             "Calibrated Target HSL Components H:133, S:75, L:47");

    // Now a run may start; a cancel of its parameters leaves it idle.
    training::TrainParmsDialog* dialog = openParameters();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle(), "StrokeTraining");
    EXPECT_TRUE(dialog->findChild<QRadioButton*>("Option2_0")->isChecked());
    EXPECT_EQ(caption("cmdStartTraining"), "Stop Training");
    EXPECT_FALSE(enabled("cmdCalibrate"));
    QTest::mouseClick(dialog->findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
    EXPECT_EQ(caption("cmdStartTraining"), "Start Training");
    EXPECT_TRUE(enabled("cmdCalibrate"));
    EXPECT_FALSE(timer("tmrTraining")->isActive());
    EXPECT_EQ(fixture.window().state().CurrentState, "StopTraining");
    EXPECT_EQ(training().run().lngTrainingType, 0);
}

TEST_F(StrokeTraining, RunsCallTheWristToTheElbowOrTheAngleAtTheWristTickByTick) {
    calibrate();
    startRun(0);
    EXPECT_EQ(fixture.panel(2), "Vertical End Training");
    EXPECT_EQ(training().run().lngTrainingType, training::kVerticalTraining);
    followTheArm(training::kVerticalTraining, {"Move Hand Left", "GOOD!!!", "Move Hand Right"});
    fixture.click("cmdStartTraining");

    startRun(1);
    EXPECT_EQ(fixture.panel(2), "Perpendicular Side Training");
    followTheArm(training::kPerpendicularTraining,
                 {"Move Hand Back", "GOOD!!!", "Move Hand Forward"});
}

TEST_F(StrokeTraining, ARunDrawsItsMarksBlinksItsButtonAndEndsByItOrByLeavingThePane) {
    calibrate();
    startRun(1);
    fixture.tick("tmrTraining");
    const QColor green(0, 255, 0);
    EXPECT_EQ(QColor(overlay().pixel(50, 240)), green) << "the search region";
    EXPECT_EQ(QColor(overlay().pixel(590, 240)), green);
    // The side target stands still: a ring around the pixel found on it, whose foot lies clear
    // of the line that ends there.
    const std::optional<training::TargetPoint> third =
        tickAt(0, training::kPerpendicularTraining).third;
    ASSERT_TRUE(third);
    EXPECT_EQ(QColor(overlay().pixel(third->x, third->y + 5)), green);
    EXPECT_EQ(QColor(overlay().pixel(third->x - 5, third->y)), green);

    // The caption blinks by hand from here, the timer being fast on the test's clock.
    // Whether the run's first blink shows or hides the caption depends on how often the fast
    // timer ran before it was stopped, so the check starts from a blink of its own.
    timer("tmrBlink3")->stop();
    fixture.tick("tmrBlink3");
    const QString first = caption("cmdStartTraining");
    fixture.tick("tmrBlink3");
    const QString second = caption("cmdStartTraining");
    EXPECT_NE(first, second);
    EXPECT_TRUE((std::set<QString>{first, second} == std::set<QString>{"Stop Training", " "}));

    // A click on the blank half stops the run as well as one on "Stop Training".
    if (caption("cmdStartTraining") != " ") {
        fixture.tick("tmrBlink3");
    }
    timer("tmrBlink3")->start();
    fixture.click("cmdStartTraining");
    EXPECT_EQ(caption("cmdStartTraining"), "Start Training");
    EXPECT_FALSE(timer("tmrBlink3")->isActive());
    EXPECT_EQ(fixture.panel(2), "");
    EXPECT_EQ(fixture.text("lblAlarm"), "");
    EXPECT_EQ(QColor(overlay().pixel(50, 240)), QColor(Qt::black));
    EXPECT_TRUE(enabled("cmdCalibrate"));

    // Leaving the pane ends a run, and a calibration's count.
    startRun(0);
    timer("tmrTraining")->start();
    fixture.tick("tmrTraining");
    ASSERT_EQ(QColor(overlay().pixel(50, 240)), QColor(0, 255, 0));

    fixture.click("cmdBreakSpeed");
    EXPECT_FALSE(timer("tmrTraining")->isActive());
    EXPECT_FALSE(timer("tmrBlink3")->isActive());
    EXPECT_EQ(caption("cmdStartTraining"), "Start Training");
    EXPECT_EQ(QColor(overlay().pixel(50, 240)), QColor(Qt::black));
    EXPECT_EQ(fixture.window().state().CurrentState, "BreakSpeed") << "the new mode stands";

    fixture.click("cmdTraining");
    fixture.click("cmdCalibrate");
    ASSERT_TRUE(timer("tmrCountDown")->isActive());
    fixture.click("cmdShowLive");
    EXPECT_FALSE(timer("tmrCountDown")->isActive());
    EXPECT_FALSE(timer("tmrCalibrate")->isActive());
    EXPECT_EQ(caption("cmdCalibrate"), "Start Calibration");
    EXPECT_TRUE(enabled("cmdCalibrate"));
    EXPECT_TRUE(enabled("cmdStartTraining"));
    EXPECT_EQ(fixture.window().state().CurrentState, "Live");
}

TEST_F(StrokeTrainingHeard, TheVoiceIsHeardAndAnAlarmTypeChosenDuringARunActsFromTheNextTick) {
    if (const char* why = noVoice()) {
        GTEST_SKIP() << why;
    }
    calibrate();
    startRun(1, training::AlarmType::Voice);
    auto* alarmType = fixture.find<QComboBox>("cboAlarmType");
    const std::vector<qint16> spoken =
        server_->record(1.5, [this] { fixture.tick("tmrTraining"); });
    ASSERT_FALSE(fixture.text("lblAlarm").isEmpty());
    EXPECT_GT(loud(spoken), 441);

    alarmType->setCurrentText("No Sound");
    const std::vector<qint16> quiet =
        server_->record(1.5, [this] { EXPECT_TRUE(beepsOfATick().empty()); });
    EXPECT_FALSE(fixture.text("lblAlarm").isEmpty()) << "the text goes on";
    EXPECT_EQ(loud(quiet), 0);

    // Without its files the voice is silent and says it in text all the same.
    alarmType->setCurrentText("Voice");
    QDir(fixture.program.path() + QStringLiteral("/Sounds")).removeRecursively();
    const std::vector<qint16> silence =
        server_->record(1.5, [this] { fixture.tick("tmrTraining"); });
    EXPECT_FALSE(fixture.text("lblAlarm").isEmpty());
    EXPECT_TRUE(fixture.prompts.texts().size() == 1) << "the calibration's message alone";
    EXPECT_EQ(loud(silence), 0);
    alarmType->setCurrentText("No Sound");

    // Silent ticks until the arm is in position; from the next tick on, "GOOD!!!" beeps twice
    // and the other texts stay silent.
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::milliseconds(2 * media::kDemoArmCycleMs + 3000);
    while (fixture.text("lblAlarm") != "GOOD!!!" && std::chrono::steady_clock::now() < deadline) {
        QTest::qWait(150);
        EXPECT_TRUE(beepsOfATick().empty());
    }
    ASSERT_EQ(fixture.text("lblAlarm"), "GOOD!!!") << "the arm never came into position";
    alarmType->setCurrentText("Beep Only");
    bool beepedForGood = false;
    while (!beepedForGood && std::chrono::steady_clock::now() < deadline) {
        const std::vector<double> beeps = beepsOfATick();
        const QString shown = fixture.text("lblAlarm");
        EXPECT_FALSE(shown.isEmpty());
        if (shown == "GOOD!!!") {
            EXPECT_EQ(beeps, (std::vector<double>{500, 500}));
            beepedForGood = true;
        } else {
            EXPECT_TRUE(beeps.empty()) << shown.toStdString();
            QTest::qWait(150);
        }
    }
    EXPECT_TRUE(beepedForGood);
}

// On an engine of the test's own, so that the camera can be pulled out.
class StrokeTrainingUnplugged : public ::testing::Test {
protected:
    StrokeTrainingUnplugged() {
        fixture.answeredUpdateQuestion();
        fixture.enableDemoDevices(1);
        fixture.start();
        fixture.click("cmdTraining");
    }

    ToneBus tones;
    media::ffmpeg::FfmpegEngine engine{tones};
    WindowFixture fixture{&engine};
};

TEST_F(StrokeTrainingUnplugged, ACameraLostDuringARunEndsItWithAMessage) {
    media::CaptureInstance& cam = fixture.window().media().cam(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !cam.FrameBytes().isEmpty(); }, 10000));
    fixture.click("cmdCalibrate");
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return fixture.find<QPushButton>("cmdCalibrate")->text() == "Start Calibration"; },
        20000));
    fixture.click("cmdStartTraining");
    auto* dialog = fixture.window().findChild<training::TrainParmsDialog*>();
    ASSERT_NE(dialog, nullptr);
    QTest::mouseClick(dialog->findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    auto* tmrTraining = fixture.window().findChild<QTimer*>("tmrTraining");
    tmrTraining->stop();
    fixture.prompts.clear();

    engine.setDemoCameraPresent(1, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !cam.Connected(); }, 10000));
    fixture.tick("tmrTraining");
    ASSERT_EQ(fixture.prompts.texts().size(), 1);
    EXPECT_TRUE(fixture.prompts.texts().first().startsWith("Camera 1 ("));
    EXPECT_TRUE(fixture.prompts.texts().first().endsWith("Stroke training has stopped."));
    EXPECT_EQ(fixture.find<QPushButton>("cmdStartTraining")->text(), "Start Training");
    EXPECT_FALSE(tmrTraining->isActive());
    EXPECT_FALSE(fixture.window().findChild<QTimer*>("tmrBlink3")->isActive());
    EXPECT_EQ(fixture.window().state().CurrentState, "StopTraining");
}

} // namespace
} // namespace ravelcue::test
