#include "FfmpegPlayer.h"

#include "../VideoView.h"
#include "BackgroundIndexer.h"
#include "FrameIndex.h"
#include "FrameIndexCache.h"
#include "FrameIndexing.h"
#include "PlayerWorker.h"
#include "VideoFileReader.h"

#include <algorithm>
#include <cmath>

#include <QImageWriter>
#include <QMetaObject>

namespace ravelcue::media::ffmpeg {

FfmpegPlayer::FfmpegPlayer(std::shared_ptr<PlaybackClock> clock, QObject* parent,
                           std::shared_ptr<const FrameIndexCache> indexCache)
    : PlayerInstance(parent)
    , view_(new VideoView)
    , clock_(std::move(clock))
    , indexCache_(std::move(indexCache)) {}

FfmpegPlayer::~FfmpegPlayer() {
    indexer_.reset();
    worker_.reset(); // joins the thread before anything it calls back into goes
    delete view_.data();
}

MediaError FfmpegPlayer::PlayerOpen(const QString& path) {
    PlayerClose();
    std::shared_ptr<const FrameIndex> known;
    if (indexCache_) {
        if (const std::optional<IndexPackets> cached = indexCache_->load(path)) {
            known = cached->build();
        }
    }
    MediaError error;
    std::unique_ptr<VideoFileReader> source = VideoFileReader::open(path, error, known);
    if (!source) {
        return error;
    }
    // A file whose first frame does not decode is of no use; say so now rather than show black.
    std::optional<DecodedFrame> first = source->next();
    if (!first && !source->index()->exact()) {
        // Nothing decodes from the start without knowing where the first keyframe lies (a file
        // without keyframe flags): read the index first after all.
        if (std::unique_ptr<VideoFileReader> indexed = VideoFileReader::openIndexed(path, error)) {
            source = std::move(indexed);
            first = source->next();
        }
    }
    if (!first) {
        return {media_error::UnreadableFile,
                QStringLiteral("No picture in %1 can be decoded").arg(path)};
    }
    const bool estimated = !source->index()->exact();
    lengthTold_ = source->index();
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
    callbacks.indexAdopted = [this, opening](std::shared_ptr<const FrameIndex> index) {
        QMetaObject::invokeMethod(
            this,
            [this, opening, index] {
                if (opening == openings_ && worker_) {
                    tellLength(index);
                }
            },
            Qt::QueuedConnection);
    };
    worker_ = std::make_unique<PlayerWorker>(std::move(source), std::move(*first), clock_,
                                             std::move(callbacks));
    if (estimated) {
        indexer_ = std::make_unique<BackgroundIndexer>(
            path, indexCache_, [worker = worker_.get()](std::shared_ptr<const FrameIndex> index) {
                worker->adoptIndex(std::move(index));
            });
    }
    return MediaError::none();
}

void FfmpegPlayer::PlayerClose() {
    indexer_.reset();
    worker_.reset();
    lengthTold_.reset();
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
    return worker_ ? index()->timeMs(worker_->position()) : 0.0;
}

void FfmpegPlayer::PlayerSetPos(double ms) {
    if (!worker_) {
        return;
    }
    const double bounded = std::isfinite(ms) ? ms : 0.0;
    const std::shared_ptr<const FrameIndex> frames = index();
    if (frames->exact()) {
        worker_->seek(frames->frameAt(bounded));
    } else {
        worker_->seekToTime(bounded, frames->frameAt(bounded));
    }
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
    const auto wanted = static_cast<std::int64_t>(std::nearbyint(bounded));
    // The estimate's count is only the header's word; the worker clamps once the index is read.
    const std::shared_ptr<const FrameIndex> frames = index();
    worker_->seek(frames->exact() ? frames->clampFrame(wanted) : std::max<std::int64_t>(0, wanted));
}

QSize FfmpegPlayer::PlayerGetSize() const {
    return pictureSize_;
}

double FfmpegPlayer::PlayerGetDuration() const {
    return worker_ ? index()->durationMs() : 0.0;
}

bool FfmpegPlayer::PlayerAnswers(std::chrono::milliseconds within) const {
    return !worker_ || worker_->waitStopLanded(within);
}

int FfmpegPlayer::PlayerGetFrameCount() const {
    return worker_ ? static_cast<int>(index()->count()) : 0;
}

bool FfmpegPlayer::lengthExact() const {
    return !worker_ || index()->exact();
}

bool FfmpegPlayer::waitForLength(std::chrono::milliseconds timeout) {
    if (!worker_ || !worker_->waitIndexed(timeout)) {
        return false;
    }
    tellLength(worker_->index());
    return true;
}

std::shared_ptr<const FrameIndex> FfmpegPlayer::index() const {
    return worker_->index();
}

void FfmpegPlayer::tellLength(const std::shared_ptr<const FrameIndex>& index) {
    if (index && index != lengthTold_) {
        lengthTold_ = index;
        emit lengthKnown();
    }
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
