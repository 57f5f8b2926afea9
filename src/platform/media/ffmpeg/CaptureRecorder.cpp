#include "CaptureRecorder.h"

#include "ImageFrames.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

#include <QFileInfo>

#ifdef __unix__
#include <sys/resource.h>
#endif

namespace ravelcue::media::ffmpeg {

namespace {

// Keep about this much picture data queued at most: a second at 640x480, a third of one at
// 1920x1080, enough to ride out the encoder being kept off the processor for a moment.
constexpr std::int64_t kQueueBytes = 96LL * 1024 * 1024;
constexpr auto kShortestStretch = std::chrono::milliseconds(250);

MediaError diskFull() {
    return {media_error::DiskFull, QStringLiteral("The disk is full")};
}

} // namespace

std::int64_t CaptureRecorder::reserveBytes(std::int64_t framesWritten,
                                           std::int64_t largestFrameBytes) {
    // The index the trailer writes, the muxer's buffer, and a few frames' worth of slack.
    return 1024 * 1024 + 32 * framesWritten + 4 * largestFrameBytes;
}

CaptureRecorder::CaptureRecorder(const VideoFileSettings& settings,
                                 std::unique_ptr<VideoFileWriter> writer, FailureCallback onFailure)
    : settings_(settings)
    , writer_(std::move(writer))
    , onFailure_(std::move(onFailure))
    , framePeriodSeconds_(av_q2d(av_inv_q(settings.frameRate)))
    , folder_(QFileInfo(settings.path).absolutePath().toStdU16String())
    , stretches_{{CaptureClock::now(), CaptureClock::Clock::time_point::max()}} {
    const std::int64_t frameBytes = std::int64_t(settings.width) * settings.height * 4;
    capacity_ = static_cast<size_t>(std::clamp<std::int64_t>(kQueueBytes / frameBytes, 3, 30));
}

CaptureRecorder::~CaptureRecorder() {
    stop();
}

std::unique_ptr<CaptureRecorder> CaptureRecorder::start(const VideoFileSettings& settings,
                                                        FailureCallback onFailure,
                                                        MediaError& error) {
    std::unique_ptr<VideoFileWriter> writer = VideoFileWriter::open(settings, error);
    if (!writer) {
        return nullptr;
    }
    std::unique_ptr<CaptureRecorder> recorder(
        new CaptureRecorder(settings, std::move(writer), std::move(onFailure)));
    CaptureRecorder* self = recorder.get();
    recorder->thread_ = std::jthread([self](std::stop_token stop) { self->run(stop); });
    return recorder;
}

void CaptureRecorder::offer(const QImage& frame, CaptureClock::Clock::time_point captured) {
    {
        std::lock_guard lock(mutex_);
        if (ended_) {
            return;
        }
        // A camera may hand over a frame a little after it was taken: the frame belongs to the
        // stretch it was taken in, whether or not the recording has been held since.
        const auto taken =
            std::find_if(stretches_.rbegin(), stretches_.rend(),
                         [&](const Stretch& s) { return captured >= s.start && captured < s.end; });
        if (taken == stretches_.rend()) {
            return;
        }
        const auto stretch = size_t(std::distance(taken, stretches_.rend()) - 1);
        if (stretch < lastStretchTaken_ && lastStretchTaken_ != kNone) {
            return;
        }
        if (queue_.size() >= capacity_) {
            // The encoder is behind: this frame goes; the gap it leaves is counted when the next
            // one is written.
            return;
        }
        queue_.push_back({frame, captured, stretch != lastStretchTaken_, taken->start});
        lastStretchTaken_ = stretch;
    }
    wake_.notify_one();
}

bool CaptureRecorder::runningLocked() const {
    return !stretches_.empty() && stretches_.back().end == CaptureClock::Clock::time_point::max();
}

void CaptureRecorder::closeStretchLocked() {
    if (runningLocked()) {
        const auto now = CaptureClock::now();
        stretches_.back().end = now;
        runTimeBefore_ += now - stretches_.back().start;
    }
}

void CaptureRecorder::pause() {
    std::lock_guard lock(mutex_);
    if (ended_ || !runningLocked()) {
        return;
    }
    closeStretchLocked();
    // A start held at once, before any frame of it was taken, is a recording made ready rather
    // than one begun: a frame taken in that moment but handed over later must not open the file
    // seconds before the other members of its set.
    const Stretch& last = stretches_.back();
    const bool tookFrames = lastStretchTaken_ == stretches_.size() - 1;
    if (!tookFrames && last.end - last.start < kShortestStretch) {
        runTimeBefore_ -= last.end - last.start;
        stretches_.pop_back();
    }
}

void CaptureRecorder::resume() {
    std::lock_guard lock(mutex_);
    if (!runningLocked() && !ended_) {
        stretches_.push_back({CaptureClock::now(), CaptureClock::Clock::time_point::max()});
    }
}

MediaError CaptureRecorder::stop() {
    {
        std::lock_guard lock(mutex_);
        if (finished_) {
            return result_;
        }
        closeStretchLocked();
        ended_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
    const MediaError finished = writer_->finish();
    std::lock_guard lock(mutex_);
    if (result_.ok()) {
        result_ = finished;
    }
    finished_ = true;
    return result_;
}

bool CaptureRecorder::isRecording() const {
    std::lock_guard lock(mutex_);
    return !ended_;
}

CaptureStats CaptureRecorder::stats() const {
    std::lock_guard lock(mutex_);
    CaptureStats stats = stats_;
    auto runTime = runTimeBefore_;
    if (runningLocked()) {
        runTime += CaptureClock::now() - stretches_.back().start;
    }
    stats.elapsedMs = static_cast<std::int32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(runTime).count());
    return stats;
}

void CaptureRecorder::run(std::stop_token stop) {
    for (;;) {
        Queued item;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, stop, [this] { return !queue_.empty() || ended_; });
            if (queue_.empty()) {
                return;
            }
            item = std::move(queue_.front());
            queue_.pop_front();
        }
        if (!encode(item)) {
            std::lock_guard lock(mutex_);
            queue_.clear();
            return;
        }
    }
}

bool CaptureRecorder::encode(const Queued& item) {
    std::int64_t index = lastIndex_ + 1;
    if (item.continues) {
        // Frames lost between the start (or resume) and this one leave their slots empty.
        const double late =
            std::chrono::duration<double>(item.captured - item.since).count() / framePeriodSeconds_;
        index += std::max<std::int64_t>(0, static_cast<std::int64_t>(std::floor(late)));
        indexOrigin_ =
            item.captured - std::chrono::duration_cast<CaptureClock::Clock::duration>(
                                std::chrono::duration<double>(double(index) * framePeriodSeconds_));
    } else {
        const double position =
            std::chrono::duration<double>(item.captured - indexOrigin_).count() /
            framePeriodSeconds_;
        if (position < double(lastIndex_) + 0.5) {
            // The camera runs faster than the file: this frame has no slot of its own.
            return true;
        }
        index = std::max(index, static_cast<std::int64_t>(std::llround(position)));
    }

    if (roomLeft() < reserveBytes(writer_->framesWritten(), largestFrameBytes_)) {
        endWithFailure(diskFull());
        return false;
    }
    const FramePtr view = frameViewOf(item.frame);
    const std::int64_t before = writer_->bytesWritten();
    const MediaError error = writer_->write(*view, index);
    if (!error.ok()) {
        endWithFailure(error);
        return false;
    }
    largestFrameBytes_ = std::max(largestFrameBytes_, writer_->bytesWritten() - before);
    const std::int64_t gap = index - lastIndex_ - 1;
    lastIndex_ = index;
    std::lock_guard lock(mutex_);
    ++stats_.framesWritten;
    stats_.framesDropped += static_cast<std::int32_t>(gap);
    return true;
}

std::int64_t CaptureRecorder::roomLeft() const {
    std::int64_t room = std::numeric_limits<std::int64_t>::max();
    std::error_code failed;
    const std::filesystem::space_info space = std::filesystem::space(folder_, failed);
    if (!failed) {
        room = static_cast<std::int64_t>(std::min<std::uintmax_t>(
            space.available, std::uintmax_t(std::numeric_limits<std::int64_t>::max())));
    }
#ifdef __unix__
    // A limit on the size of files this process may write counts as a full disk too.
    rlimit limit{};
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
        room = std::min(room, static_cast<std::int64_t>(limit.rlim_cur) - writer_->bytesWritten());
    }
#endif
    return room;
}

void CaptureRecorder::endWithFailure(const MediaError& error) {
    const MediaError finished = writer_->finish();
    {
        std::lock_guard lock(mutex_);
        result_ = error;
        closeStretchLocked();
        ended_ = true;
    }
    (void)finished;
    if (onFailure_) {
        onFailure_(error);
    }
}

} // namespace ravelcue::media::ffmpeg
