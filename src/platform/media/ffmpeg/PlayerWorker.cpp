#include "PlayerWorker.h"

#include <algorithm>
#include <cmath>

namespace ravelcue::media::ffmpeg {

namespace {

// Pictures are not handed on faster than a screen shows them; at high rates the frames between
// are decoded but never converted.
constexpr auto kMinPresentInterval = std::chrono::milliseconds(14);
// Frames decoded ahead of the one on show while the player stands still.
constexpr std::int64_t kPrefetchFrames = 3;
// How long the player stands still after a seek before it decodes ahead.
constexpr auto kPrefetchDelay = std::chrono::milliseconds(10);
// Decoding this many frames forward costs about as much as one seek.
constexpr std::int64_t kSeekCostInFrames = 2;
// Until the index is read, seeks as far forward as this are decoded straight on; further ones
// wait for the index, which takes less time than decoding that far.
constexpr std::int64_t kForwardWithoutIndex = 60;

PlaybackClock::Duration fromMs(double ms) {
    return std::chrono::duration_cast<PlaybackClock::Duration>(
        std::chrono::duration<double, std::milli>(ms));
}

double toMs(PlaybackClock::Duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

} // namespace

PlayerWorker::PlayerWorker(std::unique_ptr<VideoFileReader> source, DecodedFrame first,
                           std::shared_ptr<PlaybackClock> clock, Callbacks callbacks)
    : source_(std::move(source))
    , index_(source_->index())
    , clock_(std::move(clock))
    , callbacks_(std::move(callbacks))
    , converter_(source_->rotationDegrees()) {
    publishedIndex_ = index_;
    indexAwaited_ = !index_->exact();
    cache_.put(first.number, first.frame, first.number);
    command_.seekFrame = first.number;
    command_.seekRequest = 1;
    latestRequest_ = 1;
    thread_ = std::jthread([this] { run(); });
}

PlayerWorker::~PlayerWorker() {
    {
        std::lock_guard lock(mutex_);
        command_.quit = true;
        quitting_ = true;
    }
    wake_.notify_all();
    thread_.join();
}

void PlayerWorker::seek(std::int64_t frame) {
    {
        std::lock_guard lock(mutex_);
        ++commands_;
        idle_ = false;
        command_.seekFrame = std::max<std::int64_t>(0, frame);
        command_.seekMs = std::numeric_limits<double>::quiet_NaN();
        command_.seekRequestedAt = clock_->now();
        ++command_.seekRequest;
        latestRequest_ = command_.seekRequest;
    }
    wake_.notify_all();
}

void PlayerWorker::seekToTime(double ms, std::int64_t estimate) {
    {
        std::lock_guard lock(mutex_);
        ++commands_;
        idle_ = false;
        command_.seekFrame = std::max<std::int64_t>(0, estimate);
        command_.seekMs = ms;
        command_.seekRequestedAt = clock_->now();
        ++command_.seekRequest;
        latestRequest_ = command_.seekRequest;
    }
    wake_.notify_all();
}

void PlayerWorker::adoptIndex(std::shared_ptr<const FrameIndex> index) {
    {
        std::lock_guard lock(mutex_);
        pendingIndex_ = std::move(index);
        indexArrived_ = true;
    }
    wake_.notify_all();
}

std::shared_ptr<const FrameIndex> PlayerWorker::index() const {
    std::lock_guard lock(mutex_);
    return publishedIndex_;
}

bool PlayerWorker::waitIndexed(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    settled_.wait_for(lock, timeout, [this] { return !indexAwaited_ || command_.quit; });
    return publishedIndex_->exact();
}

void PlayerWorker::play() {
    {
        std::lock_guard lock(mutex_);
        ++commands_;
        idle_ = false;
        if (!command_.playing) {
            command_.playRequestedAt = clock_->now();
        }
        command_.playing = true;
    }
    wake_.notify_all();
}

void PlayerWorker::stop() {
    {
        std::lock_guard lock(mutex_);
        ++commands_;
        idle_ = false;
        if (!command_.playing) {
            return;
        }
        command_.playing = false;
        command_.stopRequestedAt = clock_->now();
        ++command_.stopRequest;
    }
    wake_.notify_all();
}

void PlayerWorker::setRate(double rate) {
    {
        std::lock_guard lock(mutex_);
        ++commands_;
        idle_ = false;
        command_.rate = rate;
        command_.rateChangedAt = clock_->now();
    }
    wake_.notify_all();
}

bool PlayerWorker::playing() const {
    std::lock_guard lock(mutex_);
    return command_.playing;
}

std::int64_t PlayerWorker::position() const {
    std::unique_lock lock(mutex_);
    // Players paused together report the frames they stop on, not the ones they passed on the
    // way; landing takes at most one frame's decoding.
    settled_.wait_for(lock, std::chrono::seconds(2), [this] { return stopLanded(); });
    if (seekServed_ == command_.seekRequest) {
        return std::max<std::int64_t>(0, onShow_);
    }
    // A seek past the estimate's end waits for the index; until then it reports that end.
    return publishedIndex_->exact() ? command_.seekFrame
                                    : std::min(command_.seekFrame, publishedIndex_->count() - 1);
}

bool PlayerWorker::waitStopLanded(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return settled_.wait_for(lock, timeout, [this] { return stopLanded(); });
}

bool PlayerWorker::stopLanded() const {
    return stopServed_ == command_.stopRequest || command_.quit;
}

bool PlayerWorker::waitIdle(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return settled_.wait_for(lock, timeout, [this] { return idle_; });
}

bool PlayerWorker::waitSettled(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return settled_.wait_for(lock, timeout, [this] {
        return seekServed_ == command_.seekRequest && stopServed_ == command_.stopRequest;
    });
}

void PlayerWorker::run() {
    std::unique_lock lock(mutex_);
    while (!command_.quit) {
        if (indexArrived_) {
            adoptPendingIndex(lock);
        } else if (seekServed_ != command_.seekRequest) {
            if (seekWaitsForIndex()) {
                wake_.wait(lock);
            } else {
                serveSeek(lock);
            }
        } else if (stopServed_ != command_.stopRequest) {
            landStop(lock);
        } else if (command_.playing) {
            servePlayback(lock);
        } else if (std::chrono::steady_clock::now() < prefetchNotBefore_) {
            // Seeks that follow each other (a dragged slider) would only throw prefetched
            // frames away.
            pacing_ = false;
            wake_.wait_until(lock, prefetchNotBefore_);
        } else {
            pacing_ = false;
            lock.unlock();
            const bool fetched = prefetchOne() || prefetchBackwards();
            lock.lock();
            if (!fetched && seekServed_ == command_.seekRequest &&
                stopServed_ == command_.stopRequest && !command_.playing && !command_.quit) {
                idle_ = true;
                settled_.notify_all();
                wake_.wait(lock);
                idle_ = false;
            }
        }
    }
}

bool PlayerWorker::seekWaitsForIndex() const {
    if (index_->exact() || !indexAwaited_) {
        return false;
    }
    if (!std::isnan(command_.seekMs)) {
        return true;
    }
    const std::int64_t target = command_.seekFrame;
    const std::int64_t next = source_->expectedNext();
    const bool straightOn = next >= 0 && target >= next && target - next <= kForwardWithoutIndex;
    return target != onShow_ && !straightOn && !cache_.contains(target);
}

void PlayerWorker::adoptPendingIndex(std::unique_lock<std::mutex>& lock) {
    indexArrived_ = false;
    indexAwaited_ = false;
    const std::shared_ptr<const FrameIndex> adopted = std::move(pendingIndex_);
    if (adopted) {
        // Playback goes on from the frame on show at its time in the new index.
        const double before = index_->timeMs(onShow_);
        index_ = adopted;
        publishedIndex_ = adopted;
        source_->adoptIndex(adopted);
        anchorMs_ += index_->timeMs(onShow_) - before;
        backwardsTriedFor_ = -1;
    }
    settled_.notify_all();
    if (adopted && callbacks_.indexAdopted) {
        lock.unlock();
        callbacks_.indexAdopted(adopted);
        lock.lock();
    }
}

void PlayerWorker::serveSeek(std::unique_lock<std::mutex>& lock) {
    std::int64_t target = command_.seekFrame;
    if (!std::isnan(command_.seekMs)) {
        target = index_->frameAt(command_.seekMs);
    }
    if (index_->exact()) {
        target = index_->clampFrame(target);
    }
    command_.seekFrame = target;
    const std::uint64_t request = command_.seekRequest;
    const PlaybackClock::Duration requestedAt = command_.seekRequestedAt;
    requestInHand_ = request;
    // The frame on show asked for again is only a call to repaint, which the view does itself;
    // playback must not lose its pace over it (it comes with every mouse move of a drawing).
    if (target != onShow_) {
        lock.unlock();
        const std::int64_t shown = show(target);
        lock.lock();
        onShow_ = shown;
        endSent_ = false;
        if (pacing_) {
            // From the moment of the call: players sent to one place together play on in step,
            // however long each took to get there.
            followRateChange();
            anchorAt(index_->timeMs(onShow_), anchorRate_, std::max(anchorTime_, requestedAt));
        }
    }
    seekServed_ = request;
    backwardsTriedFor_ = -1; // frames evicted since may be wanted again
    prefetchNotBefore_ = std::chrono::steady_clock::now() + kPrefetchDelay;
    settled_.notify_all();
}

void PlayerWorker::anchorAt(double mediaMs, double rate, PlaybackClock::Duration at) {
    anchorMs_ = mediaMs;
    anchorRate_ = rate;
    anchorTime_ = at;
}

void PlayerWorker::followRateChange() {
    const double rate = std::clamp(command_.rate, 0.25, 4.0);
    if (rate != anchorRate_) {
        const auto changedAt = std::max(anchorTime_, command_.rateChangedAt);
        anchorMs_ += toMs(changedAt - anchorTime_) * anchorRate_;
        anchorRate_ = rate;
        anchorTime_ = changedAt;
    }
}

void PlayerWorker::landStop(std::unique_lock<std::mutex>& lock) {
    const std::uint64_t request = command_.stopRequest;
    if (pacing_) {
        followRateChange();
        const double dueMs = anchorMs_ + toMs(command_.stopRequestedAt - anchorTime_) * anchorRate_;
        const std::int64_t due =
            std::min(index_->count() - 1, index_->frameAt(std::min(dueMs, index_->durationMs())));
        if (due > onShow_) {
            lock.unlock();
            const std::int64_t shown = show(due);
            lock.lock();
            onShow_ = shown;
        }
        pacing_ = false;
    }
    stopServed_ = request;
    settled_.notify_all();
}

void PlayerWorker::reachEnd(std::unique_lock<std::mutex>& lock) {
    if (!endSent_) {
        endSent_ = true;
        if (!source_->isStillImage() && callbacks_.endReached) {
            lock.unlock();
            callbacks_.endReached(requestInHand_);
            lock.lock();
        }
    }
    // Stand on the last frame until told otherwise.
    if (seekServed_ == command_.seekRequest && command_.playing && !command_.quit &&
        std::clamp(command_.rate, 0.25, 4.0) == anchorRate_) {
        wake_.wait(lock);
    }
}

void PlayerWorker::servePlayback(std::unique_lock<std::mutex>& lock) {
    if (!pacing_) {
        pacing_ = true;
        endSent_ = false;
        anchorAt(index_->timeMs(onShow_), std::clamp(command_.rate, 0.25, 4.0),
                 command_.playRequestedAt);
    } else {
        followRateChange();
    }
    if (endSent_) {
        reachEnd(lock);
        return;
    }
    const auto now = clock_->now();
    const double dueMs = anchorMs_ + toMs(now - anchorTime_) * anchorRate_;
    const std::int64_t last = index_->count() - 1;
    if (dueMs >= index_->durationMs() && !index_->exact() && indexAwaited_) {
        wake_.wait(lock); // the estimate's end may not be the file's
        return;
    }
    if (dueMs >= index_->durationMs()) {
        if (onShow_ != last) {
            lock.unlock();
            const std::int64_t shown = show(last);
            lock.lock();
            onShow_ = shown;
            if (superseded()) {
                return; // a seek came first
            }
        }
        reachEnd(lock);
        return;
    }

    const std::int64_t due = index_->frameAt(dueMs);
    if (due > onShow_) {
        lock.unlock();
        const std::int64_t shown = show(due);
        lock.lock();
        onShow_ = shown;
        if (shown < due && !superseded()) {
            reachEnd(lock); // the file ends before its index says: a truncated file
        }
        return;
    }
    // Sleep until the next frame worth showing is due: the next one, or at high rates the first
    // that lies a screen refresh later, so the frames between are never converted.
    const double soonestMs = index_->timeMs(onShow_) + toMs(kMinPresentInterval) * anchorRate_;
    std::int64_t next = std::max(onShow_ + 1, index_->frameAt(soonestMs));
    if (next <= last && index_->timeMs(next) < soonestMs) {
        ++next;
    }
    const double nextMs = next <= last ? index_->timeMs(next) : index_->durationMs();
    clock_->waitUntil(lock, wake_, anchorTime_ + fromMs((nextMs - anchorMs_) / anchorRate_));
}

bool PlayerWorker::prefetchOne() {
    if (onShow_ < 0) {
        return false;
    }
    const std::int64_t last = std::min(index_->count() - 1, onShow_ + kPrefetchFrames);
    for (std::int64_t frame = onShow_ + 1; frame <= last; ++frame) {
        if (cache_.contains(frame)) {
            continue;
        }
        if (source_->expectedNext() != frame) {
            return false; // only while decoding straight on is cheap
        }
        const auto decoded = source_->next();
        if (!decoded) {
            return false;
        }
        cache_.put(decoded->number, decoded->frame, onShow_);
        return true;
    }
    return false;
}

bool PlayerWorker::prefetchBackwards() {
    // Starts when a frame within half the budget behind is missing, then fills all the budget
    // leaves behind the frames ahead, so that a long group of pictures is decoded again once
    // for each stretch of steps, not for each step.
    const std::int64_t reach = cache_.capacity() / 2;
    std::int64_t missing = onShow_ - 1;
    const std::int64_t lowest = std::max<std::int64_t>(0, onShow_ - reach);
    while (missing >= lowest && cache_.contains(missing)) {
        --missing;
    }
    if (onShow_ <= 0 || missing < lowest || missing == backwardsTriedFor_ || !index_->exact()) {
        return false;
    }
    backwardsTriedFor_ = missing; // a file that cannot give this frame is not asked again
    const std::int64_t keyframe = index_->keyframeAtOrBefore(missing);
    const std::int64_t keepFrom =
        std::max(keyframe, onShow_ - cache_.capacity() + kPrefetchFrames + 1);
    source_->skipUnreferencedBefore(keepFrom);
    source_->seekToKeyframe(keyframe);
    std::uint64_t seen = commands_;
    while (const auto decoded = source_->next()) {
        if (seen != commands_) {
            seen = commands_;
            if (!serveFromCacheMeanwhile()) {
                backwardsTriedFor_ = -1;
                break;
            }
        }
        if (decoded->number > missing) {
            break;
        }
        if (decoded->number >= keepFrom) {
            cache_.put(decoded->number, decoded->frame, onShow_);
        }
    }
    source_->skipUnreferencedBefore(-1);
    return true;
}

bool PlayerWorker::serveFromCacheMeanwhile() {
    std::unique_lock lock(mutex_);
    if (command_.quit || command_.playing || stopServed_ != command_.stopRequest) {
        return false;
    }
    if (seekServed_ != command_.seekRequest) {
        if (!cache_.contains(command_.seekFrame)) {
            return false;
        }
        serveSeek(lock);
    }
    return true;
}

bool PlayerWorker::superseded() const {
    return quitting_ || latestRequest_ != requestInHand_;
}

std::int64_t PlayerWorker::show(std::int64_t target) {
    const auto decoded = obtain(target);
    if (!decoded) {
        return std::max<std::int64_t>(0, onShow_);
    }
    const QImage picture = converter_.toImage(*decoded->frame);
    if (callbacks_.framePresented) {
        callbacks_.framePresented(picture, decoded->number);
    }
    return decoded->number;
}

std::optional<DecodedFrame> PlayerWorker::obtain(std::int64_t target) {
    if (SharedFrame cached = cache_.get(target)) {
        return DecodedFrame{std::move(cached), target};
    }
    return decodeTo(target);
}

std::optional<DecodedFrame> PlayerWorker::decodeTo(std::int64_t target) {
    const std::int64_t next = source_->expectedNext();
    std::int64_t keyframe = index_->keyframeAtOrBefore(target);
    const bool straightOn =
        next >= 0 && next <= target && target - next <= target - keyframe + kSeekCostInFrames;
    // Keep the frames just before the target: the next step back finds them.
    const std::int64_t keepFrom = target - cache_.capacity() + kPrefetchFrames + 1;
    source_->skipUnreferencedBefore(keepFrom);

    std::optional<DecodedFrame> decoded;
    if (straightOn) {
        decoded = source_->next();
    } else {
        ++keyframeSeeks_;
        for (;;) {
            source_->seekToKeyframe(keyframe);
            decoded = source_->next();
            // Some demuxers land past the keyframe asked for; start one keyframe earlier then.
            if (!decoded || decoded->number <= target || keyframe <= 0) {
                break;
            }
            keyframe = std::max<std::int64_t>(0, index_->keyframeBefore(keyframe));
        }
    }

    std::optional<DecodedFrame> lastDecoded;
    while (decoded) {
        if (superseded()) {
            // A newer seek (a slider on the move) or a close: the rest of this group of pictures
            // is not worth waiting for. The decoder stays where it is, ready to go on.
            source_->skipUnreferencedBefore(-1);
            return std::nullopt;
        }
        if (decoded->number >= keepFrom) {
            cache_.put(decoded->number, decoded->frame, target);
        }
        if (decoded->number >= target) {
            source_->skipUnreferencedBefore(-1);
            return decoded;
        }
        lastDecoded = std::move(decoded);
        decoded = source_->next();
    }
    source_->skipUnreferencedBefore(-1);
    return lastDecoded; // the file ended early: the last frame there is
}

} // namespace ravelcue::media::ffmpeg
