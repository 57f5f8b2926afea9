#pragma once

#include "../PlayerInstance.h"
#include "../VideoView.h"
#include "PlaybackClock.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

#include <QImage>
#include <QMutex>
#include <QPointer>

namespace ravelcue::media::ffmpeg {

class BackgroundIndexer;
class FrameIndex;
class FrameIndexCache;
class PlayerWorker;

// A player on FFmpeg. The UI-thread side of a PlayerWorker: it opens files, turns times into
// frame numbers through the file's frame index, and forwards what the worker shows to its view.
// A file opens on its first picture and the header's estimate of its length; its frame index is
// read meanwhile (or found in the cache when one is given). Counts, times and positions follow
// the index the worker uses; lengthKnown tells when they have become exact.
class FfmpegPlayer final : public PlayerInstance {
    Q_OBJECT
public:
    explicit FfmpegPlayer(
        std::shared_ptr<PlaybackClock> clock = std::make_shared<SteadyPlaybackClock>(),
        QObject* parent = nullptr, std::shared_ptr<const FrameIndexCache> indexCache = {});
    ~FfmpegPlayer() override;

    MediaError PlayerOpen(const QString& path) override;
    void PlayerClose() override;
    bool IsOpen() const override;
    void PlayerPlay() override;
    void PlayerStop() override;
    bool IsPlaying() const override;
    void PlayerSetRate(double rate) override;
    double PlayerGetPos() const override;
    void PlayerSetPos(double ms) override;
    double PlayerGetFrame() const override;
    void PlayerSetFrame(double frame) override;
    bool PlayerAnswers(std::chrono::milliseconds within) const override;
    QSize PlayerGetSize() const override;
    double PlayerGetDuration() const override;
    int PlayerGetFrameCount() const override;
    bool lengthExact() const override;
    int PictureWidth() const override;
    int PictureHeight() const override;
    void SetZoomRegion(int x, int y, int width, int height) override;
    MediaError PlayerSaveFrame(const QString& path, int quality) override;
    void SetBitmapOverlay(const QImage& overlay) override;
    void UpdateBitmapOverlay(const QImage& overlay, const QRect& changed) override;
    void SetTextOverlay(int slot, const QString& text, int x, int y, const QString& font,
                        int pointSize, QColor color) override;
    VideoView* view() const override { return view_.data(); }

    // Waits until the frame last asked for is on show; false on timeout or when closed.
    bool waitForFrame(std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;
    // Waits until the frame index of the open file is exact, and tells so at once (lengthKnown
    // comes now, not later); false on timeout or when the file could not be read to its end.
    bool waitForLength(std::chrono::milliseconds timeout = std::chrono::seconds(30));
    // The picture on show, without overlays; thread-safe.
    QImage pictureOnShow() const;
    double PlayerGetRate() const { return rate_; }
    // Pictures handed to the view since the file was opened; thread-safe.
    std::int64_t framesPresented() const { return framesPresented_; }

private:
    void present(const QImage& picture, std::int64_t frame); // worker thread
    void deliverToView();
    // The index in use; only while a file is open.
    std::shared_ptr<const FrameIndex> index() const;
    void tellLength(const std::shared_ptr<const FrameIndex>& index);

    QPointer<VideoView> view_;
    std::shared_ptr<PlaybackClock> clock_;
    std::shared_ptr<const FrameIndex> lengthTold_; // the index lengthKnown last told of
    std::shared_ptr<const FrameIndexCache> indexCache_;
    std::unique_ptr<PlayerWorker> worker_;
    std::unique_ptr<BackgroundIndexer> indexer_; // goes before the worker it hands the index to
    QSize pictureSize_;
    double rate_ = 1.0;
    std::uint64_t openings_ = 0;

    mutable QMutex shownMutex_;
    QImage shown_;
    std::atomic<bool> deliveryPending_{false};
    std::atomic<std::int64_t> framesPresented_{0};
};

} // namespace ravelcue::media::ffmpeg
