#pragma once

#include "ShotMicrophone.h"
#include "WaveformMouse.h"
#include "app/WindowFixture.h"
#include "breakspeed/BreakSpeedPane.h"
#include "breakspeed/WaveformBox.h"

#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

namespace ravelcue::test {

// The main window in break speed mode, its microphone a ShotMicrophone that plays the first
// break of the seed (none without one).
class BreakSpeedWindow : public WaveformMouse {
public:
    explicit BreakSpeedWindow(std::optional<std::uint64_t> seed)
        : engine(seed) {
        fixture.answeredUpdateQuestion();
        fixture.store.writeText("Audio Source", "Demo Microphone");
        fixture.start();
        fixture.click("cmdBreakSpeed");
    }

    breakspeed::BreakSpeedPane& pane() {
        return *fixture.window().findChild<breakspeed::BreakSpeedPane*>();
    }
    ShotMicrophone& microphone() {
        return dynamic_cast<ShotMicrophone&>(*fixture.window().media().audio);
    }
    QString field(const QString& name) { return fixture.find<QLineEdit>(name)->text(); }
    QString caption() { return fixture.find<QPushButton>("cmdStartBreakSpeed")->text(); }
    QColor statusColour() {
        return fixture.find<QLabel>("lblBreakStatus")->palette().color(QPalette::WindowText);
    }
    QString recording() {
        return QString::fromStdString(fixture.window().state().AppDataDir) + "/breakspeed.wav";
    }
    QString log() {
        return QString::fromStdString(fixture.window().state().AppDataDir) + "/BreakSpeedLog.txt";
    }

    // Starts a capture, waits for the first blink to show "Stop Capture", and stops it.
    void measure() {
        fixture.click("cmdStartBreakSpeed");
        EXPECT_TRUE(QTest::qWaitFor([&] { return caption() == "Stop Capture"; }, 30000));
        fixture.click("cmdStartBreakSpeed");
    }

    ShotEngine engine;
    WindowFixture fixture{&engine};
};

} // namespace ravelcue::test
