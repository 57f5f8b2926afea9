// The calibration tone through a real sound server, heard on its output. A program of its own,
// since the sound server must be there before anything in the process asks for sound devices.

#include "BreakSpeedWindow.h"
#include "support/SoundServer.h"

#include <cmath>

#include <QAudioDevice>
#include <QMediaDevices>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

class CalibrationTone : public ::testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<PrivateSoundServer>(); }
    static void TearDownTestSuite() { server_.reset(); }
    void SetUp() override {
        if (!server_->running() || QMediaDevices::audioOutputs().isEmpty()) {
            GTEST_SKIP() << "no PulseAudio server to play into";
        }
    }

    static inline std::unique_ptr<PrivateSoundServer> server_;
};

// Marking the tone's block by hand is done on the demo microphone, in the end-to-end tests.
TEST_F(CalibrationTone, SoundsASecondOf400HzAndSetsTheCalibrationDistance) {
    BreakSpeedWindow w(std::nullopt);
    const std::vector<qint16> heard = server_->record(2.5, [&] { w.fixture.click("cmdCalTone"); });

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

    // The next capture puts the configured distance back.
    w.fixture.click("cmdStartBreakSpeed");
    EXPECT_EQ(w.field("txtDistance"), "48");
    EXPECT_EQ(w.field("txtSpeed"), "0.000");
    w.fixture.click("cmdStartBreakSpeed");
}

} // namespace
} // namespace ravelcue::test
