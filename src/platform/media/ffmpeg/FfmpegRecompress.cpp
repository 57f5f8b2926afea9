#include "FfmpegRecompress.h"

#include "RecompressJob.h"

#include <QMetaObject>
#include <QPointer>

namespace ravelcue::media::ffmpeg {

FfmpegRecompress::FfmpegRecompress(int index, QObject* parent)
    : RecompressInstance(index, parent) {}

FfmpegRecompress::~FfmpegRecompress() {
    cancelled_ = true;
    if (job_.joinable()) {
        job_.join();
    }
}

void FfmpegRecompress::SetBitmapOverlay(const QImage& overlay) {
    overlay_.setBitmap(overlay);
}

void FfmpegRecompress::SetTextOverlay(int slot, const QString& text, int x, int y,
                                      const QString& font, int pointSize, QColor color) {
    overlay_.setText(slot, TextOverlay{text, x, y, font, pointSize, color});
}

bool FfmpegRecompress::Recompress(const QString& source, const QString& destination, double startMs,
                                  double endMs) {
    if (busy_) {
        return false;
    }
    if (job_.joinable()) {
        job_.join();
    }
    busy_ = true;
    cancelled_ = false;
    const RecompressRequest request{source, destination, startMs, endMs};
    job_ = std::jthread([this, request, overlay = overlay_] {
        const auto report = [this](int percent) {
            QMetaObject::invokeMethod(
                this, [this, percent] { emit progress(percent); }, Qt::QueuedConnection);
        };
        const MediaError error = recompressVideo(request, overlay, cancelled_, report);
        QMetaObject::invokeMethod(
            this,
            [this, error] {
                busy_ = false;
                emit finished(index(), error);
            },
            Qt::QueuedConnection);
    });
    return true;
}

void FfmpegRecompress::Cancel() {
    cancelled_ = true;
}

} // namespace ravelcue::media::ffmpeg
