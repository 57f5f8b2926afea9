#pragma once

#include "PlaybackE2e.h"
#include "markups/MarkerShape.h"

#include <QApplication>
#include <QDialog>
#include <QMouseEvent>
#include <QWheelEvent>

namespace ravelcue::test {

// The window on the real engine, with the mouse worked on a player's picture at picture pixels
// and the picture on show read back.
class MarkupsWindow : public RealPlaybackWindow {
public:
    media::VideoView& view(int i) { return *player(i).view(); }

    // Where picture pixel p lies in player i's view, zoom and window size as they are.
    QPointF onScreen(int i, QPointF p) {
        media::VideoView& v = view(i);
        const QRect shown = v.shownRegion(v.pictureSize());
        const QRect target = v.pictureRect();
        return {target.left() + (p.x() - shown.left()) * target.width() / shown.width(),
                target.top() + (p.y() - shown.top()) * target.height() / shown.height()};
    }
    void mouse(int i, QEvent::Type type, QPointF p, Qt::MouseButton button, Qt::MouseButtons held) {
        media::VideoView& v = view(i);
        const QPointF at = onScreen(i, p);
        QMouseEvent event(type, at, v.mapToGlobal(at), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&v, &event);
    }
    void press(int i, QPointF p, Qt::MouseButton button = Qt::LeftButton) {
        mouse(i, QEvent::MouseButtonPress, p, button, button);
    }
    void moveTo(int i, QPointF p, Qt::MouseButtons held = Qt::NoButton) {
        mouse(i, QEvent::MouseMove, p, Qt::NoButton, held);
    }
    void release(int i, QPointF p, Qt::MouseButton button = Qt::LeftButton) {
        mouse(i, QEvent::MouseButtonRelease, p, button, Qt::NoButton);
    }
    void drag(int i, QPointF from, QPointF to) {
        press(i, from);
        moveTo(i, (from + to) / 2, Qt::LeftButton);
        moveTo(i, to, Qt::LeftButton);
        release(i, to);
    }
    void wheel(int i, QPointF p, int notches) {
        media::VideoView& v = view(i);
        const QPointF at = onScreen(i, p);
        QWheelEvent event(at, v.mapToGlobal(at), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&v, &event);
    }
    void tool(const char* key) { fixture.click(QStringLiteral("Toolbar2_") + key); }

    // The picture on show with its markups, at picture size.
    QImage shownPicture(int i) { return view(i).composedFrame(); }
    static QRgb rgbOf(std::int32_t colour) { return markups::colourOf(colour).rgb() | 0xFF000000u; }
    bool shows(int i, QPoint p, std::int32_t colour) {
        return (shownPicture(i).pixel(p) | 0xFF000000u) == rgbOf(colour);
    }
    std::int32_t markerColour() { return fixture.window().settings().MarkerColor; }

    // The dialog of that name on show; one closed a moment ago may still wait to be deleted.
    QDialog* dialog(const char* name) {
        for (QDialog* found : fixture.window().findChildren<QDialog*>(QString::fromLatin1(name))) {
            if (found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }
};

} // namespace ravelcue::test
