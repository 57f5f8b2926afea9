#pragma once

#include "MediaError.h"

#include <QColor>
#include <QImage>
#include <QObject>
#include <QString>

namespace ravelcue::media {

// Re-encodes a video, or a span of it, with the overlays burnt in by the same composer as the
// players use. Methods are called on the UI thread; the work runs on a thread of its own and its
// signals arrive on the UI thread.
class RecompressInstance : public QObject {
    Q_OBJECT
public:
    explicit RecompressInstance(int index, QObject* parent = nullptr)
        : QObject(parent)
        , index_(index) {}
    ~RecompressInstance() override = default;

    int index() const { return index_; }

    virtual void SetBitmapOverlay(const QImage& overlay) = 0;
    virtual void SetTextOverlay(int slot, const QString& text, int x, int y, const QString& font,
                                int pointSize, QColor color) = 0;
    // Returns at once; startMs and endMs of 0 and 0 mean the whole file. False when a job is
    // already running.
    virtual bool Recompress(const QString& source, const QString& destination, double startMs,
                            double endMs) = 0;
    virtual void Cancel() = 0;
    virtual bool IsBusy() const = 0;

signals:
    void progress(int percent);
    // The end of a job: done, cancelled or failed. No file is left under the destination name
    // unless error is none.
    void finished(int index, ravelcue::media::MediaError error);

private:
    int index_;
};

} // namespace ravelcue::media
