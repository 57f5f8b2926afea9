#pragma once

#include "../CaptureClock.h"
#include "../CaptureStats.h"
#include "../MediaError.h"
#include "VideoFileWriter.h"

#include <condition_variable>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include <QImage>
#include <QString>

namespace ravelcue::media::ffmpeg {

// One recording: frames offered by the camera's thread go through a bounded queue to an encoder
// thread of its own, so a slow disk or encoder drops frames (and counts them) instead of holding
// up the preview. A frame's place in the file follows its capture time: a frame that went
// missing leaves a gap of its length, and a pause leaves none.
//
// Frames are taken while the recording runs: from start() to pause(), and from each resume() to
// the next pause() or stop(), judged by their capture time. Control calls come from one thread
// (the UI thread), offer() from the camera's; both may meet. The failure callback runs on the
// encoder thread, once, when the recording ended on its own (a write failed, the disk is full).
class CaptureRecorder {
public:
    using FailureCallback = std::function<void(const MediaError&)>;

    ~CaptureRecorder();

    // Opens the file and starts the encoder thread; running from now on. Null on failure.
    static std::unique_ptr<CaptureRecorder> start(const VideoFileSettings& settings,
                                                  FailureCallback onFailure, MediaError& error);

    void offer(const QImage& frame, CaptureClock::Clock::time_point captured);
    void pause();
    void resume();
    // Writes what is queued, finishes the file and waits for the encoder thread. Idempotent.
    MediaError stop();
    // True from start() until stop() or a failure.
    bool isRecording() const;
    CaptureStats stats() const;
    QString path() const { return settings_.path; }

    // Bytes of disk to keep free for the end of the file: its index and the frames in flight.
    static std::int64_t reserveBytes(std::int64_t framesWritten, std::int64_t largestFrameBytes);

private:
    struct Queued {
        QImage frame;
        CaptureClock::Clock::time_point captured;
        bool continues = false; // the first frame after a start or a resume
    };

    CaptureRecorder(const VideoFileSettings& settings, std::unique_ptr<VideoFileWriter> writer,
                    FailureCallback onFailure);
    void run(std::stop_token stop);
    // Encoder thread: writes one frame; false when the recording must end.
    bool encode(const Queued& item);
    std::int64_t roomLeft() const;
    void endWithFailure(const MediaError& error);

    VideoFileSettings settings_;
    std::unique_ptr<VideoFileWriter> writer_;
    FailureCallback onFailure_;
    double framePeriodSeconds_;
    std::filesystem::path folder_;
    size_t capacity_;

    mutable std::mutex mutex_;
    std::condition_variable_any wake_;
    std::deque<Queued> queue_;
    bool running_ = true; // taking frames
    bool ended_ = false;  // no more frames will ever be taken
    bool finished_ = false;
    CaptureClock::Clock::time_point runningSince_;
    CaptureClock::Clock::duration runTimeBefore_{};
    bool continueNext_ = true; // the next frame taken continues the file without a gap
    CaptureStats stats_;
    MediaError result_;

    // Encoder thread only.
    std::int64_t lastIndex_ = -1;
    CaptureClock::Clock::time_point indexOrigin_;
    std::int64_t largestFrameBytes_ = 0;
    std::int64_t bytesAtLastCheck_ = 0;

    std::jthread thread_;
};

} // namespace ravelcue::media::ffmpeg
