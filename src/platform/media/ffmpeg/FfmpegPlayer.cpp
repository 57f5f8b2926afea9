#include "FfmpegPlayer.h"

#include "../VideoView.h"
#include "FrameIndex.h"
#include "PlayerWorker.h"
#include "VideoFileReader.h"

#include <algorithm>
#include <cmath>

#include <QImageWriter>
#include <QMetaObject>

namespace ravelcue::media::ffmpeg {

FfmpegPlayer::FfmpegPlayer(std::shared_ptr<PlaybackClock> clock, QObject* parent)
    : PlayerInstance(parent)
    , view_(new VideoView)
    , clock_(std::move(clock)) {}

FfmpegPlayer::~FfmpegPlayer() {
    worker_.reset(); // joins the thread before anything it calls back into goes
    delete view_.data();
}

MediaError FfmpegPlayer::PlayerOpen(const QString& path) {
    PlayerClose();
    MediaError error;
    std::unique_ptr<VideoFileReader> source = VideoFileReader::open(path, error);
    if (!source) {
        return error;
    }
    // A file whose first frame does not decode is of no use; say so now rather than show black.
    std::optional<DecodedFrame> first = source->next();
    if (!first) {
        return {media_error::UnreadableFile,
                QStringLiteral("No picture in %1 can be decoded").arg(path)};
    }
    index_ = source->index();
    const bool sideways = source->rotationDegrees() % 180 != 0;
    pictureSize_ = sideways ? QSize(source->height(), source->width())
                            : QSize(source->width(), source->height());
    rate_ = 1.0;
    framesPresented_ = 0;
    PlayerWorker::Callbacks callbacks;
    callbacks.framePresented = [this](const QImage& picture, std::int64_t frame) {
        present(picture, frame);
    };
    const std::uint64_t opening = ++openings_;
    callbacks.endReached = [this, opening](std::uint64_t seekServed) {
        QMetaObject::invokeMethod(
            this,
            [this, opening, seekServed] {
                // Sent somewhere else since (by the end of another player of a Set, or the
                // timeline), the player is no longer at the end it reported.
                if (opening == openings_ && worker_ && worker_->latestSeekRequest() == seekServed) {
                    emit PlayerEnd();
                }
            },
            Qt::QueuedConnection);
    };
    worker_ = std::make_unique<PlayerWorker>(std::move(source), std::move(*first), clock_,
                                             std::move(callbacks));
    return MediaError::none();
}

void FfmpegPlayer::PlayerClose() {
    worker_.reset();
    index_.reset();
    pictureSize_ = {};
    {
        QMutexLocker lock(&shownMutex_);
        shown_ = QImage();
    }
    if (view_) {
        view_->presentFrame(QImage());
    }
}

bool FfmpegPlayer::IsOpen() const {
    return worker_ != nullptr;
}

void FfmpegPlayer::PlayerPlay() {
    if (worker_) {
        worker_->play();
    }
}

void FfmpegPlayer::PlayerStop() {
    if (worker_) {
        worker_->stop();
    }
}

bool FfmpegPlayer::IsPlaying() const {
    return worker_ && worker_->playing();
}

void FfmpegPlayer::PlayerSetRate(double rate) {
    rate_ = std::clamp(rate, 0.25, 4.0);
    if (worker_) {
        worker_->setRate(rate_);
    }
}

double FfmpegPlayer::PlayerGetPos() const {
    return worker_ ? index_->timeMs(worker_->position()) : 0.0;
}

void FfmpegPlayer::PlayerSetPos(double ms) {
    if (!worker_) {
        return;
    }
    worker_->seek(index_->frameAt(std::isfinite(ms) ? ms : 0.0));
    if (view_) {
        view_->update();
    }
}

double FfmpegPlayer::PlayerGetFrame() const {
    return worker_ ? static_cast<double>(worker_->position()) : 0.0;
}

void FfmpegPlayer::PlayerSetFrame(double frame) {
    if (!worker_) {
        return;
    }
    const double bounded = std::isfinite(frame) ? std::clamp(frame, -1.0, 9.0e15) : 0.0;
    worker_->seek(index_->clampFrame(static_cast<std::int64_t>(std::nearbyint(bounded))));
}

QSize FfmpegPlayer::PlayerGetSize() const {
    return pictureSize_;
}

double FfmpegPlayer::PlayerGetDuration() const {
    return index_ ? index_->durationMs() : 0.0;
}

bool FfmpegPlayer::PlayerAnswers(std::chrono::milliseconds within) const {
    return !worker_ || worker_->waitStopLanded(within);
}

int FfmpegPlayer::PlayerGetFrameCount() const {
    return index_ ? static_cast<int>(index_->count()) : 0;
}

int FfmpegPlayer::PictureWidth() const {
    return pictureSize_.width();
}

int FfmpegPlayer::PictureHeight() const {
    return pictureSize_.height();
}

void FfmpegPlayer::SetZoomRegion(int x, int y, int width, int height) {
    if (view_) {
        view_->setZoomRegion(QRect(x, y, width, height));
    }
}

MediaError FfmpegPlayer::PlayerSaveFrame(const QString& path, int quality) {
    if (!worker_) {
        return {media_error::NotConnected, QStringLiteral("No file is open in this player")};
    }
    if (!waitForFrame()) {
        return {media_error::Busy,
                QStringLiteral("The player did not reach the frame asked for within 30 seconds")};
    }
    QImage picture = pictureOnShow().convertToFormat(QImage::Format_RGB32);
    if (picture.isNull()) {
        return {media_error::UnreadableFile, QStringLiteral("No picture is on show")};
    }
    if (view_) {
        view_->overlay().burnInto(picture);
    }
    QImageWriter writer(path, "jpeg");
    writer.setQuality(std::clamp(quality, 1, 100));
    if (!writer.write(picture)) {
        return {media_error::WriteFailed, writer.errorString()};
    }
    return MediaError::none();
}

void FfmpegPlayer::SetBitmapOverlay(const QImage& overlay) {
    if (view_) {
        view_->overlay().setBitmap(overlay);
        view_->overlayChanged();
    }
}

void FfmpegPlayer::UpdateBitmapOverlay(const QImage& overlay, const QRect& changed) {
    if (view_) {
        view_->overlay().updateBitmap(overlay, changed);
        view_->overlayChanged(changed);
    }
}

void FfmpegPlayer::SetTextOverlay(int slot, const QString& text, int x, int y, const QString& font,
                                  int pointSize, QColor color) {
    if (view_) {
        view_->overlay().setText(slot, TextOverlay{text, x, y, font, pointSize, color});
        view_->overlayChanged();
    }
}

bool FfmpegPlayer::waitForFrame(std::chrono::milliseconds timeout) const {
    return worker_ && worker_->waitSettled(timeout);
}

QImage FfmpegPlayer::pictureOnShow() const {
    QMutexLocker lock(&shownMutex_);
    return shown_;
}

void FfmpegPlayer::present(const QImage& picture, std::int64_t) {
    {
        QMutexLocker lock(&shownMutex_);
        shown_ = picture;
    }
    ++framesPresented_;
    if (!deliveryPending_.exchange(true)) {
        QMetaObject::invokeMethod(
            this, [this] { deliverToView(); }, Qt::QueuedConnection);
    }
}

void FfmpegPlayer::deliverToView() {
    deliveryPending_ = false;
    if (view_) {
        view_->presentFrame(pictureOnShow());
    }
}

} // namespace ravelcue::media::ffmpeg
