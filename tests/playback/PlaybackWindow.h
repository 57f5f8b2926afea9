#pragma once

#include "app/WindowFixture.h"
#include "platform/media/VideoView.h"
#include "playback/Timeline.h"

#include <QDir>
#include <QFile>
#include <QFrame>
#include <QMouseEvent>

namespace ravelcue::test {

// The main window started on a recording engine (or the one given, or the FFmpeg engine), with
// helpers to make files in its data folder, open them through the dialogs and work the timeline
// with the mouse.
class PlaybackWindow {
public:
    explicit PlaybackWindow(media::MediaEngine* engine = nullptr)
        : fixture(engine) {
        fixture.answeredUpdateQuestion();
        fixture.start();
    }
    // On the FFmpeg engine, no camera enabled.
    explicit PlaybackWindow(DemoDevices demo)
        : fixture(demo) {
        fixture.answeredUpdateQuestion();
        fixture.start();
    }

    QString dataDir() { return QString::fromStdString(state().AppDataDir); }
    QString videos(const QString& name) { return dataDir() + QStringLiteral("/Videos/") + name; }
    QString images(const QString& name) { return dataDir() + QStringLiteral("/Images/") + name; }
    // An empty file: the recording engine opens anything.
    QString touch(const QString& path) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        return path;
    }

    void openVideo(const QString& path) {
        fixture.prompts.chooseFileNext(path);
        fixture.click(QStringLiteral("cmdLoadVideo"));
    }
    void openImage(const QString& path) {
        fixture.prompts.chooseFileNext(path);
        fixture.click(QStringLiteral("cmdLoadImage"));
    }

    AppState& state() { return fixture.window().state(); }
    media::PlayerInstance& player(int i) { return fixture.window().media().play(i); }
    playback::Timeline& slider() { return *fixture.find<playback::Timeline>("Slider1"); }
    bool shown(const QString& name) { return !fixture.find<QWidget>(name)->isHidden(); }
    bool enabled(const QString& name) { return fixture.find<QAction>(name)->isEnabled(); }
    QString playTip() { return fixture.find<QAction>("Toolbar1_Play")->toolTip(); }

    // A press, moves and a release of the left button on the timeline, from one step to
    // another, with the keyboard modifiers held at each.
    void dragTimeline(int fromStep, int toStep, Qt::KeyboardModifiers held,
                      Qt::KeyboardModifiers atRelease) {
        playback::Timeline& timeline = slider();
        const int y = timeline.height() / 2;
        const QPointF from(timeline.pixelOf(fromStep), y);
        const QPointF to(timeline.pixelOf(toStep), y);
        send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton, held);
        const QPointF middle = (from + to) / 2;
        send(QEvent::MouseMove, middle, Qt::NoButton, Qt::LeftButton, held);
        send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton, held);
        send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton, atRelease);
    }
    void rightPressTimeline() {
        send(QEvent::MouseButtonPress, QPointF(10, 5), Qt::RightButton, Qt::RightButton, {});
        send(QEvent::MouseButtonRelease, QPointF(10, 5), Qt::RightButton, Qt::NoButton, {});
    }

    WindowFixture fixture;

private:
    void send(QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers modifiers) {
        playback::Timeline& timeline = slider();
        QMouseEvent event(type, at, timeline.mapToGlobal(at), button, buttons, modifiers);
        QCoreApplication::sendEvent(&timeline, &event);
    }
};

} // namespace ravelcue::test
