#pragma once

#include "FrameCache.h"
#include "FrameConverter.h"
#include "PlaybackClock.h"
#include "VideoFileReader.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include <QImage>

namespace ravelcue::media::ffmpeg {

// The thread behind one player: it owns the source, decodes, keeps the frame cache, paces
// playback by the clock and hands each picture to be shown to framePresented. Commands from the
// UI thread land in one small command record (latest wins) and wake the thread. The public
// methods are thread-safe; the callbacks run on the worker thread.
class PlayerWorker {
public:
    struct Callbacks {
        std::function<void(const QImage& picture, std::int64_t frame)> framePresented;
        // seekServed: the last seek served before the end, to tell an end that a later seek
        // has overtaken.
        std::function<void(std::uint64_t seekServed)> endReached;
        // The source took on the index read from the whole file in place of its estimate.
        std::function<void(std::shared_ptr<const FrameIndex>)> indexAdopted;
    };

    // Decoded frames kept around the one on show. 1080p frames take about 3 MB each.
    static constexpr std::size_t kCacheBudgetBytes = 160u * 1024u * 1024u;

    // first: the source's first frame, already decoded by whoever opened it; it goes on show.
    PlayerWorker(std::unique_ptr<VideoFileReader> source, DecodedFrame first,
                 std::shared_ptr<PlaybackClock> clock, Callbacks callbacks);
    ~PlayerWorker();
    PlayerWorker(const PlayerWorker&) = delete;
    PlayerWorker& operator=(const PlayerWorker&) = delete;

    // Frames past the end land on the last one. Until the index is exact, a frame further away
    // than a short run forward waits for it.
    void seek(std::int64_t frame);
    // The frame on show at that time; estimate is where the player reports to be until then.
    void seekToTime(double ms, std::int64_t estimate);
    // The index read from the whole file, for a source that started on an estimate; null when it
    // could not be read, and the estimate stays. Thread-safe.
    void adoptIndex(std::shared_ptr<const FrameIndex> index);
    // The index in use; thread-safe.
    std::shared_ptr<const FrameIndex> index() const;
    // Waits until the index is exact, or known never to be; false when it is not.
    bool waitIndexed(std::chrono::milliseconds timeout) const;
    void play();
    void stop();
    void setRate(double rate);
    bool playing() const;
    // The number of the last seek asked for; thread-safe.
    std::uint64_t latestSeekRequest() const { return latestRequest_; }
    // The frame asked for last while it is being fetched, otherwise the frame on show. Straight
    // after a stop it waits for the frame the player stops on.
    std::int64_t position() const;
    // Waits until position() answers at once: the last stop has landed; false on timeout.
    bool waitStopLanded(std::chrono::milliseconds timeout) const;
    // Waits until the last seek or stop is on show; false on timeout.
    bool waitSettled(std::chrono::milliseconds timeout) const;
    // Waits until the player stands still with nothing left to decode ahead; false on timeout.
    bool waitIdle(std::chrono::milliseconds timeout) const;
    // How often a frame to be shown had to be decoded from a keyframe; thread-safe.
    std::uint64_t keyframeSeeks() const { return keyframeSeeks_; }

private:
    struct Command {
        std::int64_t seekFrame = 0;
        double seekMs = std::numeric_limits<double>::quiet_NaN(); // a seek by time
        std::uint64_t seekRequest = 0;
        std::uint64_t stopRequest = 0;
        bool playing = false;
        double rate = 1.0;
        bool quit = false;
        // When the call came, so that pacing does not depend on when the worker woke, and
        // players told together stay together.
        PlaybackClock::Duration playRequestedAt{};
        PlaybackClock::Duration stopRequestedAt{};
        PlaybackClock::Duration seekRequestedAt{};
        PlaybackClock::Duration rateChangedAt{};
    };

    void run();
    void serveSeek(std::unique_lock<std::mutex>& lock);
    // A seek the estimate cannot serve exactly: too far from where the decoder stands.
    bool seekWaitsForIndex() const;
    void adoptPendingIndex(std::unique_lock<std::mutex>& lock);
    // Shows the frame that was due when the stop was asked for, and ends the pacing.
    void landStop(std::unique_lock<std::mutex>& lock);
    void servePlayback(std::unique_lock<std::mutex>& lock);
    void followRateChange();
    void reachEnd(std::unique_lock<std::mutex>& lock);
    bool prefetchOne();
    // Decodes the frames a few steps back that the cache lacks (the end of the group of pictures
    // before), so that stepping back across a keyframe finds them. Seeks the cache can serve are
    // served on the way; anything else ends it. False when there was nothing to do.
    bool prefetchBackwards();
    // During prefetchBackwards: serves a pending seek from the cache; false when a command waits
    // that needs the decoder (or a close).
    bool serveFromCacheMeanwhile();
    // Brings the frame into view from the cache or the decoder; returns the number shown.
    std::int64_t show(std::int64_t target);
    std::optional<DecodedFrame> obtain(std::int64_t target);
    std::optional<DecodedFrame> decodeTo(std::int64_t target);
    void anchorAt(double mediaMs, double rate, PlaybackClock::Duration at);
    // Under the lock: the last stop asked for is on show, or the worker is closing.
    bool stopLanded() const;
    // A newer seek or a close came while decoding.
    bool superseded() const;

    std::unique_ptr<VideoFileReader> source_;
    std::shared_ptr<const FrameIndex> index_; // worker thread only
    std::shared_ptr<PlaybackClock> clock_;
    Callbacks callbacks_;
    FrameCache cache_{kCacheBudgetBytes};
    FrameConverter converter_;

    mutable std::mutex mutex_;
    std::condition_variable wake_;
    mutable std::condition_variable settled_;
    Command command_;
    std::uint64_t seekServed_ = 0;
    std::uint64_t stopServed_ = 0;
    std::int64_t onShow_ = -1;
    std::shared_ptr<const FrameIndex> publishedIndex_; // index_, for other threads
    std::shared_ptr<const FrameIndex> pendingIndex_;
    bool indexArrived_ = false;
    bool indexAwaited_ = false;

    std::chrono::steady_clock::time_point prefetchNotBefore_{};
    // Read while decoding without taking the lock.
    std::atomic<std::uint64_t> latestRequest_{0};
    std::atomic<bool> quitting_{false};
    // Counts every command from the UI thread, so that long work can tell one came.
    std::atomic<std::uint64_t> commands_{0};
    std::atomic<std::uint64_t> keyframeSeeks_{0};
    bool idle_ = false;
    std::int64_t backwardsTriedFor_ = -1; // worker thread only
    std::uint64_t requestInHand_ = 0;     // worker thread only

    // Playback pacing; worker thread only.
    bool pacing_ = false;
    bool endSent_ = false;
    double anchorMs_ = 0;
    double anchorRate_ = 1.0;
    PlaybackClock::Duration anchorTime_{};

    std::jthread thread_; // last: starts when everything above is ready
};

} // namespace ravelcue::media::ffmpeg
