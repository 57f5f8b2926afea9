#pragma once

#include "ShotMicrophone.h"
#include "app/WindowFixture.h"
#include "breakspeed/BreakSpeedPane.h"
#include "breakspeed/WaveformBox.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>

#include <gtest/gtest.h>

namespace ravelcue::test {

// The main window in break speed mode, its microphone a ShotMicrophone playing one break at
// speedMph (none at 0).
class BreakSpeedWindow {
public:
    explicit BreakSpeedWindow(double speedMph)
        : engine(speedMph) {
        engine.listenTo(fixture.tones);
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

    // A press, a move and a release of the left button inside a waveform box, at pixel columns of
    // its drawing area, halfway down.
    static void drag(breakspeed::WaveformBox* box, int fromColumn, int toColumn) {
        press(box, fromColumn);
        move(box, QPoint(box->contentsRect().left() + (fromColumn + toColumn) / 2, 20));
        release(box, toColumn);
    }
    static QPoint at(breakspeed::WaveformBox* box, int column) {
        return {box->contentsRect().left() + column, box->contentsRect().center().y()};
    }
    static void press(breakspeed::WaveformBox* box, int column) {
        send(box, QEvent::MouseButtonPress, at(box, column), Qt::LeftButton, Qt::LeftButton);
    }
    static void move(breakspeed::WaveformBox* box, QPoint position) {
        send(box, QEvent::MouseMove, position, Qt::NoButton, Qt::LeftButton);
    }
    static void release(breakspeed::WaveformBox* box, int column) {
        send(box, QEvent::MouseButtonRelease, at(box, column), Qt::LeftButton, Qt::NoButton);
    }
    static void send(QWidget* widget, QEvent::Type type, QPoint position, Qt::MouseButton button,
                     Qt::MouseButtons buttons) {
        QMouseEvent event(type, QPointF(position), QPointF(widget->mapToGlobal(position)), button,
                          buttons, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    }

    ShotEngine engine;
    WindowFixture fixture{&engine};
};

} // namespace ravelcue::test
