#pragma once

#include "../MediaError.h"
#include "FfmpegPtr.h"

#include <memory>

#include <QString>

namespace ravelcue::media::ffmpeg {

// The codecs Ravelcue writes. The container follows the file's extension (.avi, .wmv/.asf,
// .mp4, .mov, .mkv).
enum class VideoCodec { Mjpeg, H264, Mpeg4, Ffv1, Huffyuv, RawBgr, Wmv2 };

struct VideoFileSettings {
    QString path;
    int width = 0;
    int height = 0;
    AVRational frameRate{30, 1};
    VideoCodec codec = VideoCodec::Mjpeg;
    int bitRate = 0; // bits a second for rate-controlled codecs; 0 picks a quality default
    int quality = 0; // MJPEG without a bit rate: 1 (smallest) to 31 (best); 0 the default 28
    int keyFrameInterval = 0; // frames between key frames; 0 gives one every second
    int threads = 0;          // encoder threads; 0 lets the encoder choose
};

// Encodes frames into a new video file. Not thread-safe: one thread writes. The file is complete
// and playable after finish(); a writer destroyed without finish() still closes a readable file.
class VideoFileWriter {
public:
    virtual ~VideoFileWriter() = default;

    // Opens the encoder and the file. On failure returns null and fills error.
    static std::unique_ptr<VideoFileWriter> open(const VideoFileSettings& settings,
                                                 MediaError& error);

    // frame: any pixel format and size; it is converted and scaled as the encoder needs.
    // frameIndex: the frame's number from the start of the file (timestamps are frameIndex
    // in units of 1/frameRate), strictly increasing.
    virtual MediaError write(const AVFrame& frame, std::int64_t frameIndex) = 0;
    // Drains the encoder and writes the trailer.
    virtual MediaError finish() = 0;
    virtual std::int64_t framesWritten() const = 0;
    // Bytes handed to the file so far; 0 once finished.
    virtual std::int64_t bytesWritten() const = 0;
};

} // namespace ravelcue::media::ffmpeg
