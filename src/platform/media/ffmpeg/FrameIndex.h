#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" {
#include <libavutil/rational.h>
}

namespace ravelcue::media::ffmpeg {

// Every frame of a video stream in presentation order, with its timestamp, built once from the
// packets of the whole file, or until then an estimate from the file's header. Frame n here is the
// n-th picture a decoder puts out when it reads the file from the start, so positions never rest on
// an assumed frame rate. Immutable once built; safe to share between threads.
//
// Where every packet carries a presentation stamp, frames are known by their stamps. Where some
// do not (AVI stores decode order only; its demuxer guesses stamps for some packets), frames are
// counted in decode order from a keyframe, and no stamp of the file is trusted to name one.
class FrameIndex {
public:
    struct Packet {
        std::int64_t pts = 0;
        std::int64_t dts = 0;
        std::int64_t duration = 0;
        bool keyframe = false;
        // Decoded only to reach later frames: an edit list starts the film after it.
        bool discard = false;
    };

    FrameIndex() = default;
    // packets: the video packets in file (decode) order; missing timestamps are AV_NOPTS_VALUE.
    // fallbackFrameRate stands in where the file gives no frame durations. outputDelay: for
    // decoders that hold each picture back until later packets come and stamp it with the one
    // that pushed it out, how many packets that is; 0 otherwise.
    FrameIndex(const std::vector<Packet>& packets, AVRational timeBase,
               AVRational fallbackFrameRate, int outputDelay = 0);

    // Until the packets have been read: as many frames as the header promises, evenly spaced
    // from the first stamp, one keyframe at the start, numbered by counting. Not exact.
    static FrameIndex estimate(std::int64_t frames, AVRational timeBase, std::int64_t firstStamp,
                               AVRational frameRate);

    // False for an estimate: its count and times are only the header's word.
    bool exact() const { return exact_; }
    std::int64_t count() const { return static_cast<std::int64_t>(stamps_.size()); }
    bool empty() const { return stamps_.empty(); }
    // Whether the stamps are presentation timestamps that decoded frames carry; when false
    // decoded frames are numbered by counting.
    bool framesCarryStamps() const { return framesCarryStamps_; }
    int outputDelay() const { return outputDelay_; }

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
    // For counted frames: the place in decode order of the packet with this decode stamp, or -1.
    std::int64_t decodePosition(std::int64_t dts) const;
    // For counted frames: the place in decode order of the keyframe packet with these stamps, or
    // -1. Demuxers that work out missing stamps from the packets before (MPEG program streams)
    // may give a keyframe read straight after a seek its presentation stamp as decode stamp.
    std::int64_t keyframeOfPacket(std::int64_t pts, std::int64_t dts) const;
    // For counted frames: how many packets there are in decode order.
    std::int64_t decodeCount() const { return static_cast<std::int64_t>(decodeStamps_.size()); }
    double durationMs() const;
    // The keyframe from which decoding reaches the frame: the last keyframe at or before it.
    std::int64_t keyframeAtOrBefore(std::int64_t frame) const;
    // True when every frame starts a group of pictures of its own (MJPEG, stills).
    bool everyFrameIsKeyframe() const { return keyframes_.size() == stamps_.size(); }
    // The keyframe before the given one, for a seek that landed too late; -1 when none.
    std::int64_t keyframeBefore(std::int64_t keyframe) const;
    // The stamp to seek to for a keyframe: the decode stamp of its packet, since demuxers that
    // search the file for a stamp (MPEG transport and program streams) go by decode stamps,
    // and a keyframe shows later than packets decoded after it.
    std::int64_t seekStamp(std::int64_t keyframe) const;
    // Whether the file marks its keyframes: packets before the first keyframe after a seek
    // are then no frames to decode.
    bool marksKeyframes() const { return marksKeyframes_; }
    AVRational timeBase() const { return timeBase_; }

private:
    using Iterator = std::vector<Packet>::const_iterator;
    bool indexByStamps(Iterator start, Iterator end);
    void indexByCounting(Iterator start, Iterator end);
    void addKeyframe(std::int64_t frame, const Packet& packet);
    void finishKeyframes();

    std::vector<std::int64_t> stamps_;     // presentation order, ascending
    std::vector<std::int64_t> keyframes_;  // frame numbers, ascending
    std::vector<std::int64_t> seekStamps_; // for each of keyframes_
    // Counted frames: presentation stamp and decode place of each keyframe, by stamp.
    std::vector<std::pair<std::int64_t, std::int64_t>> keyframePts_;
    std::vector<std::int64_t> decodeStamps_; // counted frames: dts in decode order, ascending
    std::int64_t endStamp_ = 0;
    std::int64_t frameDuration_ = 1;
    AVRational timeBase_{1, 1000};
    bool framesCarryStamps_ = true;
    bool exact_ = true;
    bool marksKeyframes_ = false;
    int outputDelay_ = 0;
};

} // namespace ravelcue::media::ffmpeg
