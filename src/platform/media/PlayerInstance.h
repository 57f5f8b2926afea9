#pragma once

#include "MediaError.h"

#include <chrono>

#include <QColor>
#include <QImage>
#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>

namespace ravelcue::media {

class VideoView;

// One player: shows one video or still picture in its view with the overlays composed on top.
// Methods are called on the UI thread; signals arrive on the UI thread. Positions are exact: a
// frame number addresses the n-th frame of the file, as ffmpeg's select filter counts them.
class PlayerInstance : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~PlayerInstance() override = default;

    // A player needs no set-up: it sizes its picture to its view and plays no sound.

    // Opens a video or a still image, shows its first frame, rate 1.0, stopped.
    virtual MediaError PlayerOpen(const QString& path) = 0;
    virtual void PlayerClose() = 0;
    virtual bool IsOpen() const = 0;
    virtual void PlayerPlay() = 0;
    // Pauses; keeps the position.
    virtual void PlayerStop() = 0;
    virtual bool IsPlaying() const = 0;
    // 0.25 to 4.0.
    virtual void PlayerSetRate(double rate) = 0;
    // The frame on show, once a pause asked for has landed: these two may hold the calling
    // thread up to 2 s while the player decodes to the frame it stops on. Ask PlayerAnswers
    // first where that would hold up a window.
    virtual double PlayerGetPos() const = 0;  // milliseconds of the frame on show
    virtual void PlayerSetPos(double ms) = 0; // clamped into the file; a running player goes on
    virtual double PlayerGetFrame() const = 0;
    virtual void PlayerSetFrame(double frame) = 0;
    // Waits up to `within` for a pause asked for to land; true when PlayerGetPos and
    // PlayerGetFrame now answer at once. A player with no file open answers at once.
    virtual bool PlayerAnswers(std::chrono::milliseconds within) const = 0;
    virtual QSize PlayerGetSize() const = 0;
    virtual double PlayerGetDuration() const = 0; // milliseconds
    virtual int PlayerGetFrameCount() const = 0;
    // False while the count and duration are still the file header's estimate: a long file opens
    // at once and its frames are counted meanwhile; lengthKnown tells when they are exact.
    virtual bool lengthExact() const { return true; }
    virtual int PictureWidth() const = 0;
    virtual int PictureHeight() const = 0;
    // The part of the picture to show enlarged; four zeros show the whole picture.
    virtual void SetZoomRegion(int x, int y, int width, int height) = 0;
    // The frame on show, with its overlays, as a JPEG of the given quality (1..100). Holds the
    // calling thread while a seek still under way lands, up to 30 s (then media_error::Busy); on
    // failure the error says why.
    virtual MediaError PlayerSaveFrame(const QString& path, int quality) = 0;

    // Shape layer: RGB32 as large as the picture; black lets the picture through.
    virtual void SetBitmapOverlay(const QImage& overlay) = 0;
    // The same layer again, of which only `changed` differs from what was handed before: while
    // a shape is dragged only the part it touches is taken over.
    virtual void UpdateBitmapOverlay(const QImage& overlay, const QRect& changed) {
        (void)changed;
        SetBitmapOverlay(overlay);
    }
    // Text slot 0..39 at picture pixel (x, y); an empty text clears the slot.
    virtual void SetTextOverlay(int slot, const QString& text, int x, int y, const QString& font,
                                int pointSize, QColor color) = 0;

    virtual VideoView* view() const = 0;

signals:
    // The file played to its end. Not sent when a seek asked for after the end overtook it.
    void PlayerEnd();
    // The frame count and duration are exact now, and may differ from what they were at open.
    void lengthKnown();
};

} // namespace ravelcue::media
