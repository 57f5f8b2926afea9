#pragma once

#include "../MediaError.h"
#include "FfmpegPtr.h"
#include "FrameIndex.h"

#include <cstdint>
#include <memory>
#include <optional>

#include <QString>

namespace ravelcue::media::ffmpeg {

// A decoded picture, never changed once made, shared between the cache, the converter and
// whoever shows it.
using SharedFrame = std::shared_ptr<const AVFrame>;

struct DecodedFrame {
    SharedFrame frame;
    std::int64_t number = 0; // position in the file's frame index
};

// The video stream of one file: its frame index, its decoder, and frame-exact positioning.
// Not thread-safe: one thread at a time decodes.
class VideoFileReader {
public:
    // Opens the file and readies the decoder at the first frame. The frame index is the one
    // given (read earlier), for a still image the one read now, and otherwise an estimate from
    // the header until adoptIndex brings the real one: frames are then counted from the start.
    // On failure returns null and fills error.
    static std::unique_ptr<VideoFileReader> open(const QString& path, MediaError& error,
                                                 std::shared_ptr<const FrameIndex> known = {});
    // Opens the file with the index of all its packets read first: for a job that needs exact
    // frame numbers and times before it decodes anything, such as copying a span of the file.
    static std::unique_ptr<VideoFileReader> openIndexed(const QString& path, MediaError& error);
    ~VideoFileReader();
    VideoFileReader(const VideoFileReader&) = delete;
    VideoFileReader& operator=(const VideoFileReader&) = delete;

    const std::shared_ptr<const FrameIndex>& index() const { return index_; }
    // The index read from the packets of the whole file, in place of the estimate. The frames
    // counted so far keep their numbers: counting from the start is what the index does too.
    void adoptIndex(std::shared_ptr<const FrameIndex> index);
    int width() const { return codec_->width; }
    int height() const { return codec_->height; }
    // Clockwise turn that shows the picture upright (phones store it in the stream's matrix).
    int rotationDegrees() const { return rotation_; }
    AVCodecID codecId() const { return stream_->codecpar->codec_id; }
    // Frames a second on average; falls back to the index when the file does not say.
    AVRational frameRate() const;
    bool isStillImage() const { return stillImage_; }

    // Readies the decoder so that it starts at this keyframe (a frame number of the index).
    bool seekToKeyframe(std::int64_t keyframe);
    // The next frame in presentation order; nullopt at the end of the file.
    std::optional<DecodedFrame> next();
    // The number the next frame out will most likely have; -1 after the end.
    std::int64_t expectedNext() const { return ended_ ? -1 : lastNumber_ + 1; }
    // Frames before this one need not be shown: the decoder may skip those that no other frame
    // refers to. Only where frames carry their stamps, so that skipped ones leave no gap in
    // the numbering. -1 turns it off.
    void skipUnreferencedBefore(std::int64_t frame) { skipBefore_ = frame; }

private:
    VideoFileReader() = default;
    static std::unique_ptr<VideoFileReader> openWith(const QString& path, MediaError& error,
                                                     std::shared_ptr<const FrameIndex> known,
                                                     bool readIndex);
    MediaError openInput(const QString& path);
    MediaError buildIndex();
    void estimateIndex();
    MediaError openDecoder();
    std::int64_t numberFor(const AVFrame& frame);
    bool feedDecoder();

    InputContextPtr input_;
    CodecContextPtr codec_;
    AVStream* stream_ = nullptr;
    PacketPtr packet_ = makePacket();
    std::shared_ptr<const FrameIndex> index_;
    int rotation_ = 0;
    bool stillImage_ = false;
    bool inputEnded_ = false;
    bool ended_ = false;
    bool rebaseOnNextPacket_ = false;
    // Read from the start without an index: packets before the first keyframe are no frames.
    bool awaitingKeyframe_ = false;
    std::int64_t lastNumber_ = -1;
    std::int64_t flushed_ = 0; // pictures the decoder gave up at the end of the file
    std::int64_t skipBefore_ = -1;
};

} // namespace ravelcue::media::ffmpeg
