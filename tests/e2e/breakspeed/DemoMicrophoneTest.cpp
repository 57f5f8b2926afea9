// The break speed pane on the real engine, listening to the demo microphone: a measurement of the
// break it played, kept in the log, and the calibration tone heard back. A private sound server
// gives the program a sound output; it must be up before anything asks for sound devices.

#include "platform/media/demo/DemoMicrophone.h"

#include "app/WindowFixture.h"
#include "breakspeed/AudioAnalysis.h"
#include "breakspeed/BreakSpeedPane.h"
#include "breakspeed/WaveformMouse.h"
#include "core/AppState.h"
#include "core/NumberFormat.h"
#include "support/SoundServer.h"

#include <cmath>

#include <QAudioDevice>
#include <QLabel>
#include <QLineEdit>
#include <QMediaDevices>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

constexpr std::uint64_t kSeed = 7;

class DemoMicrophone : public ::testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<PrivateSoundServer>(); }
    static void TearDownTestSuite() { server_.reset(); }

    DemoMicrophone() {
        fixture.answeredUpdateQuestion();
        // The microphone alone: the cameras would only keep the machine busy.
        fixture.enableDemoDevices(0);
        fixture.start();
        fixture.click("cmdBreakSpeed");
    }

    breakspeed::BreakSpeedPane& pane() {
        return *fixture.window().findChild<breakspeed::BreakSpeedPane*>();
    }
    QString field(const QString& name) { return fixture.find<QLineEdit>(name)->text(); }
    QString caption() { return fixture.find<QPushButton>("cmdStartBreakSpeed")->text(); }
    std::string recording() { return fixture.window().state().AppDataDir + "/breakspeed.wav"; }

    static inline std::unique_ptr<PrivateSoundServer> server_;
    WindowFixture fixture{DemoDevices{kSeed}};
};

TEST_F(DemoMicrophone, AMeasurementReadsTheBreakPlayed) {
    // The engine's first recording plays the breaks of the seed itself.
    const media::DemoBreak shot = media::demoBreak(kSeed, 0);
    fixture.click("cmdStartBreakSpeed");
    // The window's clock runs fast, the microphone in real time: the test blinks by hand, so
    // that the countdown can't end the capture before the break has sounded.
    fixture.window().findChild<QTimer*>("tmrBlink2")->stop();
    const double crashEnds = shot.startSeconds + media::demoBreakDelaySeconds(shot.speedMph) + 0.8;
    QTest::qWait(static_cast<int>((crashEnds + 0.3) * 1000));
    fixture.tick("tmrBlink2");
    ASSERT_NE(caption(), "Start Capture");
    fixture.click("cmdStartBreakSpeed");

    ASSERT_EQ(caption(), "Start Capture");
    EXPECT_EQ(fixture.text("lblBreakStatus"), "Auto Peak Detect - 2 peaks found");
    // 48 inches less the cue ball, as the microphone's breaks are timed.
    EXPECT_EQ(field("txtSpeed").toStdString(), Format(shot.speedMph, "#0.00"))
        << "the break played at " << shot.speedMph << " mph";
    EXPECT_FALSE(field("txtEnergy").isEmpty());
}

// The tone is heard on the sound server's output and by the microphone; marked by hand, its
// block reads the speed the calibration distance makes of a second.
TEST_F(DemoMicrophone, TheCalibrationToneSoundsASecondOf400HzAndMarkedByHandReadsFive) {
    if (!server_->running() || QMediaDevices::audioOutputs().isEmpty()) {
        GTEST_SKIP() << "no PulseAudio server to play into";
    }
    const std::vector<qint16> heard = server_->record(2.5, [&] { fixture.click("cmdCalTone"); });
    EXPECT_TRUE(fixture.prompts.texts().isEmpty())
        << fixture.prompts.texts().join("; ").toStdString();
    size_t from = heard.size();
    size_t to = 0;
    for (size_t i = 0; i < heard.size(); ++i) {
        if (std::abs(heard[i]) > 2000) {
            from = std::min(from, i);
            to = i;
        }
    }
    ASSERT_LT(from, to);
    int rises = 0;
    for (size_t i = from + 1; i <= to; ++i) {
        rises += (heard[i - 1] < 0 && heard[i] >= 0) ? 1 : 0;
    }
    const double seconds = static_cast<double>(to - from) / 44100;
    EXPECT_NEAR(seconds, 1.0, 0.05);
    EXPECT_NEAR(rises / seconds, 400, 8);

    EXPECT_EQ(fixture.text("lblBreakStatus"), "400hz calibration tone");
    EXPECT_EQ(fixture.find<QLabel>("lblBreakStatus")->palette().color(QPalette::WindowText),
              QColor(Qt::black));
    EXPECT_EQ(field("txtDistance"), "90.25"); // inches, cue ball taken off: 88 left
    EXPECT_EQ(field("txtSpeed"), "0.000");
    EXPECT_EQ(field("txtDeltaTime"), "");

    // The microphone heard the tone through the program's own sound: a block of one second.
    const breakspeed::LoadedAudio audio = breakspeed::LoadAudioFile(recording());
    ASSERT_EQ(audio.result, breakspeed::LoadResult::Loaded);
    const auto block =
        WaveformMouse::markLoudBlock(pane().picture1(), pane().picture2(), audio.samples, "5.00",
                                     [&] { return field("txtSpeed"); });
    EXPECT_NEAR(block.last - block.first, 88200, 20);
    EXPECT_EQ(block.readings.last(), "5.00") << block.readings.join(", ").toStdString();

    // The next capture puts the configured distance back.
    fixture.click("cmdStartBreakSpeed");
    EXPECT_EQ(field("txtDistance"), "48");
    fixture.click("cmdStartBreakSpeed");
}

} // namespace
} // namespace ravelcue::test
