// The calibration tone through a real sound server: heard on its output, recorded by the
// microphone, and marked by hand. A program of its own, since the sound server must be there
// before anything in the process asks for sound devices.

#include "BreakSpeedWindow.h"
#include "breakspeed/AudioAnalysis.h"
#include "support/SoundServer.h"

#include <cmath>

#include <QAudioDevice>
#include <QMediaDevices>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

using breakspeed::WaveformBox;

class CalibrationTone : public ::testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<PrivateSoundServer>(); }
    static void TearDownTestSuite() { server_.reset(); }
    void SetUp() override {
        if (!server_->running() || QMediaDevices::audioOutputs().isEmpty()) {
            GTEST_SKIP() << "no PulseAudio server to play into";
        }
    }

    // The column whose left edge lies nearest to X.
    static int nearestColumn(const WaveformBox* box, double x) {
        return static_cast<int>(std::lround(x * box->canvas().width() / box->scale().width));
    }

    static inline std::unique_ptr<PrivateSoundServer> server_;
};

TEST_F(CalibrationTone, OneSecondMarkedByHandReadsFive) {
    BreakSpeedWindow w(0);
    const std::vector<qint16> heard = server_->record(2.5, [&] { w.fixture.click("cmdCalTone"); });

    // The speakers sounded 400 Hz for a second.
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

    EXPECT_EQ(w.fixture.text("lblBreakStatus"), "400hz calibration tone");
    EXPECT_EQ(w.statusColour(), QColor(Qt::black));
    EXPECT_EQ(w.field("txtDistance"), "90.25"); // inches, cue ball taken off: 88 left
    EXPECT_EQ(w.field("txtSpeed"), "0.000");
    EXPECT_EQ(w.field("txtDeltaTime"), "");

    // Find the tone's block in the recording as the eye finds it in Picture1.
    const breakspeed::LoadedAudio audio = breakspeed::LoadAudioFile(w.recording().toStdString());
    int first = 0;
    int last = 0;
    // The left channel after the 44-byte header; the tone starts with the recording.
    for (int i = 22; i + 1 < static_cast<int>(audio.samples.size()); i += 2) {
        if (std::abs(audio.samples[static_cast<size_t>(i)]) > 2000) {
            first = first == 0 ? i : first;
            last = i;
        }
    }
    ASSERT_GT(last - first, 80000);
    WaveformBox* picture1 = w.pane().picture1();
    WaveformBox* picture2 = w.pane().picture2();
    const int selFrom = std::max(picture1->columnAt(first - 8820), 0);
    BreakSpeedWindow::drag(picture1, selFrom, picture1->columnAt(last + 8820) + 1);
    const double selStart = std::round(picture1->xAt(selFrom));

    // Marks on its two ends; a person nudges the second by a pixel if the reading is off.
    const int start = nearestColumn(picture2, first - selStart);
    const int end = nearestColumn(picture2, last - selStart);
    QStringList readings;
    for (const int nudge : {0, -1, 1}) {
        BreakSpeedWindow::drag(picture2, start, end + nudge);
        readings << w.field("txtSpeed");
        if (readings.last() == "5.00") {
            break;
        }
    }
    EXPECT_EQ(readings.last(), "5.00") << readings.join(", ").toStdString();

    // The next capture puts the configured distance back.
    w.fixture.click("cmdStartBreakSpeed");
    EXPECT_EQ(w.field("txtDistance"), "48");
    EXPECT_EQ(w.field("txtSpeed"), "0.000");
    w.fixture.click("cmdStartBreakSpeed");
}

} // namespace
} // namespace ravelcue::test
