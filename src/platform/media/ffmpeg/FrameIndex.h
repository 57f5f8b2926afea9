#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" {
#include <libavutil/rational.h>
}

namespace ravelcue::media::ffmpeg {

// Every frame of a video stream in presentation order, with its timestamp, built once by
// demuxing the whole file. Frame n here is the n-th frame a decoder puts out when it reads the
// file from the start, so positions never rest on an assumed frame rate. Immutable once built;
// safe to share between threads.
class FrameIndex {
public:
    struct Packet {
        std::int64_t pts = 0;
        std::int64_t dts = 0;
        std::int64_t duration = 0;
        bool keyframe = false;
    };

    FrameIndex() = default;
    // packets: the video packets in file (decode) order; missing timestamps are AV_NOPTS_VALUE.
    // fallbackFrameRate stands in where the file gives no frame durations.
    FrameIndex(const std::vector<Packet>& packets, AVRational timeBase,
               AVRational fallbackFrameRate);

    std::int64_t count() const { return static_cast<std::int64_t>(stamps_.size()); }
    bool empty() const { return stamps_.empty(); }
    // Whether the stamps are presentation timestamps that decoded frames carry; when false
    // (AVI, which stores only decode order), decoded frames are numbered by counting.
    bool framesCarryStamps() const { return framesCarryStamps_; }

    std::int64_t clampFrame(std::int64_t frame) const;
    std::int64_t stamp(std::int64_t frame) const {
        return stamps_[static_cast<std::size_t>(frame)];
    }
    // Milliseconds from the first frame to this one.
    double timeMs(std::int64_t frame) const;
    // The frame on show at that time; clamped into the file.
    std::int64_t frameAt(double ms) const;
    // The frame with exactly this stamp, or -1.
    std::int64_t frameOfStamp(std::int64_t stamp) const;
    double durationMs() const;
    // The keyframe from which decoding reaches the frame: the last keyframe at or before it.
    std::int64_t keyframeAtOrBefore(std::int64_t frame) const;
    // True when every frame starts a group of pictures of its own (MJPEG, stills).
    bool everyFrameIsKeyframe() const { return keyframes_.size() == stamps_.size(); }
    // The keyframe before the given one, for a seek that landed too late; -1 when none.
    std::int64_t keyframeBefore(std::int64_t keyframe) const;
    AVRational timeBase() const { return timeBase_; }

private:
    std::vector<std::int64_t> stamps_;    // presentation order, ascending
    std::vector<std::int64_t> keyframes_; // frame numbers, ascending
    std::int64_t endStamp_ = 0;
    AVRational timeBase_{1, 1000};
    bool framesCarryStamps_ = true;
};

} // namespace ravelcue::media::ffmpeg
