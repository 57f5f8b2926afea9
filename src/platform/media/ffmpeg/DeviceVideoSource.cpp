#include "DeviceVideoSource.h"

#include "ImageFrames.h"

extern "C" {
#include <libavdevice/avdevice.h>
}

#include <chrono>

namespace ravelcue::media::ffmpeg {

namespace {

// How long one open or read may wait for a device before it counts as gone.
constexpr std::int64_t kOpenTimeoutMs = 5000;
constexpr std::int64_t kReadTimeoutMs = 3000;

std::int64_t steadyMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

DeviceVideoSource::~DeviceVideoSource() = default;

int DeviceVideoSource::interrupted(void* opaque) {
    auto* self = static_cast<DeviceVideoSource*>(opaque);
    return self->stopRequested_.load() || steadyMs() > self->deadlineMs_.load() ? 1 : 0;
}

std::unique_ptr<DeviceVideoSource> DeviceVideoSource::open(const VideoDeviceEntry& device,
                                                           QSize size, double frameRate,
                                                           QString& reason) {
    std::unique_ptr<DeviceVideoSource> source(new DeviceVideoSource);
    source->name_ = device.name;
    const AVInputFormat* format = av_find_input_format(device.inputFormat.toLatin1().constData());
    if (format == nullptr) {
        reason = QStringLiteral("No input for %1").arg(device.inputFormat);
        return nullptr;
    }
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) {
        reason = QStringLiteral("Out of memory");
        return nullptr;
    }
    context->interrupt_callback = {&DeviceVideoSource::interrupted, source.get()};
    AVDictionary* options = nullptr;
    if (!size.isEmpty()) {
        av_dict_set(&options, "video_size",
                    QStringLiteral("%1x%2").arg(size.width()).arg(size.height()).toLatin1(), 0);
    }
    if (frameRate > 0) {
        av_dict_set(&options, "framerate", QByteArray::number(frameRate, 'f', 3), 0);
    }
    source->deadlineMs_ = steadyMs() + kOpenTimeoutMs;
    int code = avformat_open_input(&context, device.url.toUtf8().constData(), format, &options);
    av_dict_free(&options);
    if (code < 0) {
        reason = QStringLiteral("Cannot open %1: %2").arg(device.name, errorText(code));
        return nullptr;
    }
    source->input_.reset(context);
    code = avformat_find_stream_info(context, nullptr);
    if (code < 0) {
        reason = QStringLiteral("%1 sends no picture").arg(device.name);
        return nullptr;
    }
    const AVCodec* decoder = nullptr;
    source->streamIndex_ = av_find_best_stream(context, AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    if (source->streamIndex_ < 0 || decoder == nullptr) {
        reason = QStringLiteral("%1 sends no picture we can read").arg(device.name);
        return nullptr;
    }
    const AVStream* stream = context->streams[source->streamIndex_];
    source->decoder_.reset(avcodec_alloc_context3(decoder));
    if (!source->decoder_ ||
        avcodec_parameters_to_context(source->decoder_.get(), stream->codecpar) < 0 ||
        avcodec_open2(source->decoder_.get(), decoder, nullptr) < 0) {
        reason = QStringLiteral("Cannot decode the picture of %1").arg(device.name);
        return nullptr;
    }
    source->packet_ = makePacket();
    source->decoded_ = makeFrame();
    source->size_ = QSize(stream->codecpar->width, stream->codecpar->height);
    const AVRational rate =
        stream->avg_frame_rate.num > 0 ? stream->avg_frame_rate : stream->r_frame_rate;
    source->frameRate_ = rate.num > 0 && rate.den > 0 ? av_q2d(rate) : frameRate;
    return source;
}

VideoSource::Read DeviceVideoSource::read(SourceFrame& frame, std::stop_token stop,
                                          QString& reason) {
    std::stop_callback onStop(stop, [this] { stopRequested_ = true; });
    for (;;) {
        if (stop.stop_requested()) {
            return Read::Stopped;
        }
        deadlineMs_ = steadyMs() + kReadTimeoutMs;
        int code = av_read_frame(input_.get(), packet_.get());
        if (code < 0) {
            if (stop.stop_requested()) {
                return Read::Stopped;
            }
            if (code == AVERROR(EAGAIN)) {
                continue;
            }
            reason = QStringLiteral("%1 stopped sending pictures (%2)").arg(name_, errorText(code));
            return Read::Lost;
        }
        const auto captured = CaptureClock::now();
        if (packet_->stream_index != streamIndex_) {
            av_packet_unref(packet_.get());
            continue;
        }
        code = avcodec_send_packet(decoder_.get(), packet_.get());
        av_packet_unref(packet_.get());
        if (code < 0) {
            continue; // a damaged picture: wait for the next one
        }
        code = avcodec_receive_frame(decoder_.get(), decoded_.get());
        if (code < 0) {
            continue;
        }
        frame.image = imageOf(*decoded_, converter_);
        av_frame_unref(decoded_.get());
        if (frame.image.isNull()) {
            reason = QStringLiteral("%1 sends pictures we cannot convert").arg(name_);
            return Read::Lost;
        }
        frame.captured = captured;
        return Read::Frame;
    }
}

} // namespace ravelcue::media::ffmpeg
