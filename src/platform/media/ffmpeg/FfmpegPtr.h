#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>

#include <QString>

// Owning pointers for FFmpeg's objects, so that no error path leaks one.
namespace ravelcue::media::ffmpeg {

struct InputContextDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
// An output context also owns its AVIOContext when one was opened.
struct OutputContextDeleter {
    void operator()(AVFormatContext* context) const {
        if (context == nullptr) {
            return;
        }
        if (context->pb != nullptr && !(context->oformat->flags & AVFMT_NOFILE)) {
            avio_closep(&context->pb);
        }
        avformat_free_context(context);
    }
};
struct CodecContextDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct SwsDeleter {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};
struct SwrDeleter {
    void operator()(SwrContext* context) const { swr_free(&context); }
};

using InputContextPtr = std::unique_ptr<AVFormatContext, InputContextDeleter>;
using OutputContextPtr = std::unique_ptr<AVFormatContext, OutputContextDeleter>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using SwsPtr = std::unique_ptr<SwsContext, SwsDeleter>;
using SwrPtr = std::unique_ptr<SwrContext, SwrDeleter>;

inline FramePtr makeFrame() {
    return FramePtr(av_frame_alloc());
}
inline PacketPtr makePacket() {
    return PacketPtr(av_packet_alloc());
}

// FFmpeg's text for an error code.
inline QString errorText(int code) {
    char buffer[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, buffer, sizeof buffer);
    return QString::fromUtf8(buffer);
}

} // namespace ravelcue::media::ffmpeg
