#include "FrameIndexing.h"

#include <QFileInfo>

namespace ravelcue::media::ffmpeg {

namespace {

// The decoders of the MPEG-1, MPEG-2 and MPEG-4 Visual family hold each picture back until the
// next reference picture comes, and stamp it with the decode stamp of the packet that pushed it
// out; this many packets later.
int pushedOutDelay(const AVCodecParameters& parameters) {
    switch (parameters.codec_id) {
    case AV_CODEC_ID_MPEG1VIDEO:
    case AV_CODEC_ID_MPEG2VIDEO:
    case AV_CODEC_ID_MPEG4:
        return parameters.video_delay;
    default:
        return 0;
    }
}

} // namespace

std::shared_ptr<const FrameIndex> IndexPackets::build() const {
    return std::make_shared<const FrameIndex>(packets, timeBase, frameRate, outputDelay);
}

MediaError openVideoInput(const QString& path, InputContextPtr& input, AVStream*& stream) {
    if (!QFileInfo(path).isFile()) {
        return {media_error::FileNotFound, QStringLiteral("File not found: %1").arg(path)};
    }
    AVFormatContext* context = nullptr;
    const QByteArray name = path.toUtf8();
    int result = avformat_open_input(&context, name.constData(), nullptr, nullptr);
    if (result < 0) {
        return {media_error::UnreadableFile,
                QStringLiteral("Cannot read %1: %2").arg(path, errorText(result))};
    }
    input.reset(context);
    result = avformat_find_stream_info(input.get(), nullptr);
    if (result < 0) {
        return {media_error::UnreadableFile,
                QStringLiteral("Cannot read %1: %2").arg(path, errorText(result))};
    }
    const int streamIndex =
        av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (streamIndex < 0) {
        return {media_error::NoVideoStream, QStringLiteral("%1 holds no video").arg(path)};
    }
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        input->streams[i]->discard =
            static_cast<int>(i) == streamIndex ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    stream = input->streams[streamIndex];
    return MediaError::none();
}

IndexPackets timingOf(const AVStream& stream) {
    IndexPackets timing;
    timing.timeBase = stream.time_base;
    timing.frameRate = stream.avg_frame_rate;
    if (timing.frameRate.num <= 0 || timing.frameRate.den <= 0) {
        timing.frameRate = stream.r_frame_rate;
    }
    timing.outputDelay = pushedOutDelay(*stream.codecpar);
    return timing;
}

MediaError readIndexPackets(AVFormatContext& input, const AVStream& stream, IndexPackets& packets,
                            const std::atomic<bool>* stop) {
    PacketPtr packet = makePacket();
    int result = 0;
    while ((result = av_read_frame(&input, packet.get())) >= 0) {
        if (packet->stream_index == stream.index) {
            packets.packets.push_back({packet->pts, packet->dts, packet->duration,
                                       (packet->flags & AV_PKT_FLAG_KEY) != 0,
                                       (packet->flags & AV_PKT_FLAG_DISCARD) != 0});
        }
        av_packet_unref(packet.get());
        if (stop != nullptr && *stop) {
            return {media_error::Busy, QStringLiteral("Reading the frames was called off")};
        }
    }
    if (result != AVERROR_EOF && packets.packets.empty()) {
        return {media_error::UnreadableFile,
                QStringLiteral("Cannot read the video: %1").arg(errorText(result))};
    }
    if (packets.packets.empty()) {
        return {media_error::UnreadableFile, QStringLiteral("The video holds no frames")};
    }
    return MediaError::none();
}

MediaError readIndexPackets(const QString& path, IndexPackets& packets,
                            const std::atomic<bool>* stop) {
    InputContextPtr input;
    AVStream* stream = nullptr;
    if (MediaError error = openVideoInput(path, input, stream)) {
        return error;
    }
    const IndexPackets timing = timingOf(*stream);
    packets.timeBase = timing.timeBase;
    packets.frameRate = timing.frameRate;
    packets.outputDelay = timing.outputDelay;
    return readIndexPackets(*input, *stream, packets, stop);
}

} // namespace ravelcue::media::ffmpeg
