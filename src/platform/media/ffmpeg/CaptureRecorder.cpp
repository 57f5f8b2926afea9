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

// Keep about this much picture data queued at most: a second at 640x480, less for larger ones.
constexpr std::int64_t kQueueBytes = 40LL * 1024 * 1024;

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
    , runningSince_(CaptureClock::now()) {
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
        if (!running_ || ended_ || captured < runningSince_) {
            return;
        }
        if (queue_.size() >= capacity_) {
            // The encoder is behind: this frame goes; the gap it leaves is counted when the next
            // one is written.
            return;
        }
        queue_.push_back({frame, captured, continueNext_});
        continueNext_ = false;
    }
    wake_.notify_one();
}

void CaptureRecorder::pause() {
    std::lock_guard lock(mutex_);
    if (running_ && !ended_) {
        runTimeBefore_ += CaptureClock::now() - runningSince_;
        running_ = false;
    }
}

void CaptureRecorder::resume() {
    std::lock_guard lock(mutex_);
    if (!running_ && !ended_) {
        running_ = true;
        runningSince_ = CaptureClock::now();
        continueNext_ = true;
    }
}

MediaError CaptureRecorder::stop() {
    {
        std::lock_guard lock(mutex_);
        if (finished_) {
            return result_;
        }
        if (running_) {
            runTimeBefore_ += CaptureClock::now() - runningSince_;
            running_ = false;
        }
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
    if (running_) {
        runTime += CaptureClock::now() - runningSince_;
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
        if (running_) {
            runTimeBefore_ += CaptureClock::now() - runningSince_;
            running_ = false;
        }
        ended_ = true;
    }
    (void)finished;
    if (onFailure_) {
        onFailure_(error);
    }
}

} // namespace ravelcue::media::ffmpeg
