#include "SoundtrackCopy.h"

#include "FfmpegPtr.h"

namespace ravelcue::media::ffmpeg {

namespace {

InputContextPtr openInput(const QString& path) {
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, path.toUtf8().constData(), nullptr, nullptr) < 0) {
        return nullptr;
    }
    InputContextPtr input(context);
    if (avformat_find_stream_info(input.get(), nullptr) < 0) {
        return nullptr;
    }
    return input;
}

MediaError writeFailure(int code) {
    const bool full = code == AVERROR(ENOSPC) || code == AVERROR(EFBIG) || code == AVERROR(EDQUOT);
    return {full ? media_error::DiskFull : media_error::WriteFailed,
            QStringLiteral("Writing the sound failed: %1").arg(errorText(code))};
}

// Reads the next packet of one stream; false at its end.
bool readFrom(AVFormatContext& input, int stream, AVPacket& packet) {
    while (av_read_frame(&input, &packet) >= 0) {
        if (packet.stream_index == stream && packet.dts != AV_NOPTS_VALUE) {
            return true;
        }
        av_packet_unref(&packet);
    }
    return false;
}

} // namespace

MediaError copySoundtrack(const QString& videoOnly, const QString& source, double startSeconds,
                          double endSeconds, const QString& output, bool& added) {
    added = false;
    InputContextPtr picture = openInput(videoOnly);
    InputContextPtr sound = openInput(source);
    if (!picture || !sound) {
        return {media_error::UnreadableFile,
                QStringLiteral("Cannot read back the video for its sound")};
    }
    const int soundIndex = av_find_best_stream(sound.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    const QByteArray outputName = output.toUtf8();
    const AVOutputFormat* format = av_guess_format(nullptr, outputName.constData(), nullptr);
    if (soundIndex < 0 || picture->nb_streams != 1 || format == nullptr ||
        avformat_query_codec(format, sound->streams[soundIndex]->codecpar->codec_id,
                             FF_COMPLIANCE_NORMAL) != 1) {
        return MediaError::none();
    }
    for (unsigned i = 0; i < sound->nb_streams; ++i) {
        sound->streams[i]->discard =
            static_cast<int>(i) == soundIndex ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    AVStream* soundIn = sound->streams[soundIndex];
    AVStream* pictureIn = picture->streams[0];

    AVFormatContext* context = nullptr;
    int code = avformat_alloc_output_context2(&context, nullptr, nullptr, outputName.constData());
    if (code < 0) {
        return writeFailure(code);
    }
    OutputContextPtr out(context);
    AVStream* pictureOut = avformat_new_stream(out.get(), nullptr);
    AVStream* soundOut = avformat_new_stream(out.get(), nullptr);
    if (pictureOut == nullptr || soundOut == nullptr ||
        avcodec_parameters_copy(pictureOut->codecpar, pictureIn->codecpar) < 0 ||
        avcodec_parameters_copy(soundOut->codecpar, soundIn->codecpar) < 0) {
        return {media_error::WriteFailed, QStringLiteral("Cannot set up the file with sound")};
    }
    pictureOut->codecpar->codec_tag = 0;
    soundOut->codecpar->codec_tag = 0;
    pictureOut->time_base = pictureIn->time_base;
    pictureOut->avg_frame_rate = pictureIn->avg_frame_rate;
    soundOut->time_base = soundIn->time_base;
    if ((code = avio_open(&out->pb, outputName.constData(), AVIO_FLAG_WRITE)) < 0 ||
        (code = avformat_write_header(out.get(), nullptr)) < 0) {
        return writeFailure(code);
    }

    const std::int64_t soundStart =
        static_cast<std::int64_t>(startSeconds / av_q2d(soundIn->time_base));
    const std::int64_t soundEnd =
        static_cast<std::int64_t>(endSeconds / av_q2d(soundIn->time_base));
    av_seek_frame(sound.get(), soundIndex, soundStart, AVSEEK_FLAG_BACKWARD);
    PacketPtr picturePacket = makePacket();
    PacketPtr soundPacket = makePacket();
    bool havePicture = readFrom(*picture, 0, *picturePacket);
    const auto nextSound = [&] {
        while (readFrom(*sound, soundIndex, *soundPacket)) {
            if (soundPacket->dts >= soundEnd) {
                av_packet_unref(soundPacket.get());
                return false;
            }
            if (soundPacket->dts >= soundStart) {
                soundPacket->dts -= soundStart;
                soundPacket->pts = soundPacket->pts == AV_NOPTS_VALUE
                                       ? soundPacket->dts
                                       : soundPacket->pts - soundStart;
                return true;
            }
            av_packet_unref(soundPacket.get());
        }
        return false;
    };
    bool haveSound = nextSound();
    // Written in time order, so the muxer never holds more than a packet or two.
    while (havePicture || haveSound) {
        const bool pictureFirst =
            havePicture && (!haveSound || av_compare_ts(picturePacket->dts, pictureIn->time_base,
                                                        soundPacket->dts, soundIn->time_base) <= 0);
        AVPacket& packet = pictureFirst ? *picturePacket : *soundPacket;
        AVStream* in = pictureFirst ? pictureIn : soundIn;
        AVStream* to = pictureFirst ? pictureOut : soundOut;
        av_packet_rescale_ts(&packet, in->time_base, to->time_base);
        packet.stream_index = to->index;
        packet.pos = -1;
        code = av_interleaved_write_frame(out.get(), &packet);
        if (code < 0) {
            return writeFailure(code);
        }
        if (pictureFirst) {
            havePicture = readFrom(*picture, 0, *picturePacket);
        } else {
            haveSound = nextSound();
        }
    }
    if ((code = av_write_trailer(out.get())) < 0) {
        return writeFailure(code);
    }
    added = true;
    return MediaError::none();
}

} // namespace ravelcue::media::ffmpeg
