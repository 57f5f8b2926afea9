#include "VideoFileWriter.h"

#include "HeaderRefresh.h"
#include "ImageFrames.h"

#include <algorithm>
#include <cerrno>
#include <cmath>

#include <QFile>

namespace ravelcue::media::ffmpeg {

namespace {

struct CodecChoice {
    AVCodecID id = AV_CODEC_ID_NONE;
    const char* encoderName = nullptr; // a named encoder where the default one would not do
    AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;
    bool lossless = false;
    bool fullRange = false;
};

CodecChoice choiceFor(VideoCodec codec) {
    switch (codec) {
    case VideoCodec::Mjpeg:
        // Full-range 4:2:0 is what every MJPEG decoder reads.
        return {AV_CODEC_ID_MJPEG, nullptr, AV_PIX_FMT_YUV420P, false, true};
    case VideoCodec::H264:
        return {AV_CODEC_ID_H264, "libx264", AV_PIX_FMT_YUV420P, false};
    case VideoCodec::Mpeg4:
        return {AV_CODEC_ID_MPEG4, "mpeg4", AV_PIX_FMT_YUV420P, false};
    case VideoCodec::Ffv1:
        // Our pictures are RGB; storing them as RGB keeps them bit for bit.
        return {AV_CODEC_ID_FFV1, nullptr, AV_PIX_FMT_BGR0, true};
    case VideoCodec::Huffyuv:
        return {AV_CODEC_ID_HUFFYUV, nullptr, AV_PIX_FMT_RGB24, true};
    case VideoCodec::RawBgr:
        return {AV_CODEC_ID_RAWVIDEO, nullptr, AV_PIX_FMT_BGR24, true};
    case VideoCodec::Wmv2:
        return {AV_CODEC_ID_WMV2, nullptr, AV_PIX_FMT_YUV420P, false};
    }
    return {};
}

MediaError failure(int number, const QString& what, int code = 0) {
    QString text = what;
    if (code != 0) {
        text += QStringLiteral(": ") + errorText(code);
    }
    return {number, text};
}

int errorNumberFor(int code) {
    return code == AVERROR(ENOSPC) || code == AVERROR(EFBIG) || code == AVERROR(EDQUOT)
               ? media_error::DiskFull
               : media_error::WriteFailed;
}

class FfmpegVideoFileWriter final : public VideoFileWriter {
public:
    ~FfmpegVideoFileWriter() override {
        if (!finished_) {
            finish();
        }
    }

    MediaError open(const VideoFileSettings& settings) {
        settings_ = settings;
        if (settings.width <= 0 || settings.height <= 0 || settings.frameRate.num <= 0 ||
            settings.frameRate.den <= 0) {
            return failure(media_error::NoEncoder, QStringLiteral("Invalid picture size or rate"));
        }
        const QByteArray path = settings.path.toUtf8();
        AVFormatContext* rawFormat = nullptr;
        int code = avformat_alloc_output_context2(&rawFormat, nullptr, nullptr, path.constData());
        if (code < 0 || rawFormat == nullptr) {
            return failure(media_error::WriteFailed,
                           QStringLiteral("No container for ") + settings.path, code);
        }
        format_.reset(rawFormat);

        const CodecChoice choice = choiceFor(settings.codec);
        const AVCodec* encoder = choice.encoderName != nullptr
                                     ? avcodec_find_encoder_by_name(choice.encoderName)
                                     : avcodec_find_encoder(choice.id);
        if (encoder == nullptr) {
            return failure(media_error::NoEncoder, QStringLiteral("No encoder installed"));
        }
        if (avformat_query_codec(format_->oformat, choice.id, FF_COMPLIANCE_NORMAL) != 1) {
            return failure(
                media_error::NoEncoder,
                QStringLiteral("The container of %1 cannot hold this codec").arg(settings.path));
        }
        codec_.reset(avcodec_alloc_context3(encoder));
        if (!codec_) {
            return failure(media_error::NoEncoder, QStringLiteral("Out of memory"));
        }
        configureCodec(choice);
        AVDictionary* options = nullptr;
        if (settings.codec == VideoCodec::H264) {
            av_dict_set(&options, "preset", "veryfast", 0);
            if (settings.bitRate == 0) {
                av_dict_set(&options, "crf", "20", 0);
            }
        }
        code = avcodec_open2(codec_.get(), encoder, &options);
        av_dict_free(&options);
        if (code < 0) {
            return failure(media_error::NoEncoder, QStringLiteral("Cannot open the encoder"), code);
        }

        stream_ = avformat_new_stream(format_.get(), nullptr);
        if (stream_ == nullptr) {
            return failure(media_error::WriteFailed, QStringLiteral("Out of memory"));
        }
        stream_->time_base = codec_->time_base;
        stream_->avg_frame_rate = settings.frameRate;
        stream_->r_frame_rate = settings.frameRate;
        code = avcodec_parameters_from_context(stream_->codecpar, codec_.get());
        if (code < 0) {
            return failure(media_error::WriteFailed, QStringLiteral("Bad codec parameters"), code);
        }

        if (!(format_->oformat->flags & AVFMT_NOFILE)) {
            code = avio_open(&format_->pb, path.constData(), AVIO_FLAG_WRITE);
            created_ = code >= 0;
            if (code < 0) {
                return failure(errorNumberFor(code),
                               QStringLiteral("Cannot create ") + settings.path, code);
            }
        }
        code = avformat_write_header(format_.get(), nullptr);
        if (code < 0) {
            return failure(errorNumberFor(code), QStringLiteral("Cannot write the file header"),
                           code);
        }
        headerWritten_ = true;
        if (format_->pb != nullptr) {
            avio_flush(format_->pb);
            refresh_ = HeaderRefresh::forHeader(format_->oformat->name, headerAsWritten());
        }

        converted_ = makeFrame();
        packet_ = makePacket();
        if (!converted_ || !packet_) {
            return failure(media_error::WriteFailed, QStringLiteral("Out of memory"));
        }
        converted_->format = codec_->pix_fmt;
        converted_->width = codec_->width;
        converted_->height = codec_->height;
        converted_->color_range = codec_->color_range;
        code = av_frame_get_buffer(converted_.get(), 0);
        if (code < 0) {
            return failure(media_error::WriteFailed, QStringLiteral("Out of memory"), code);
        }
        return MediaError::none();
    }

    MediaError write(const AVFrame& frame, std::int64_t frameIndex) override {
        if (finished_) {
            return failure(media_error::WriteFailed, QStringLiteral("The file is closed"));
        }
        if (!lastError_.ok()) {
            return lastError_;
        }
        if (frameIndex <= lastIndex_) {
            return failure(media_error::WriteFailed, QStringLiteral("Frame out of order"));
        }
        const bool sameRange =
            (frame.color_range == AVCOL_RANGE_JPEG) == (codec_->color_range == AVCOL_RANGE_JPEG);
        const bool asIs = frame.format == codec_->pix_fmt && frame.width == codec_->width &&
                          frame.height == codec_->height && frame.buf[0] != nullptr && sameRange;
        FramePtr passed;
        AVFrame* toEncode = nullptr;
        if (asIs) {
            passed.reset(av_frame_clone(&frame));
            if (!passed) {
                return failure(media_error::WriteFailed, QStringLiteral("Out of memory"));
            }
            toEncode = passed.get();
        } else {
            const MediaError converted = convert(frame);
            if (!converted.ok()) {
                return converted;
            }
            toEncode = converted_.get();
        }
        toEncode->pts = frameIndex;
        // A fixed quantiser is taken from each picture, not from the codec.
        if (codec_->flags & AV_CODEC_FLAG_QSCALE) {
            toEncode->quality = codec_->global_quality;
        }
        toEncode->pict_type = AV_PICTURE_TYPE_NONE;
        const int code = avcodec_send_frame(codec_.get(), toEncode);
        if (code < 0) {
            return remember(
                failure(media_error::WriteFailed, QStringLiteral("Encoding failed"), code));
        }
        lastIndex_ = frameIndex;
        ++framesWritten_;
        const MediaError drained = drain();
        if (drained.ok()) {
            flushAndRefresh(frameIndex);
        }
        return drained;
    }

    MediaError finish() override {
        if (finished_) {
            return lastError_;
        }
        finished_ = true;
        MediaError result = lastError_;
        if (codec_ && headerWritten_) {
            if (avcodec_send_frame(codec_.get(), nullptr) >= 0) {
                const MediaError drained = drain();
                if (result.ok()) {
                    result = drained;
                }
            }
            const int code = av_write_trailer(format_.get());
            if (code < 0 && result.ok()) {
                result =
                    failure(errorNumberFor(code), QStringLiteral("Cannot finish the file"), code);
            }
            if (format_->pb != nullptr) {
                const int ioError = format_->pb->error;
                if (ioError < 0 && result.ok()) {
                    result =
                        failure(errorNumberFor(ioError), QStringLiteral("Write failed"), ioError);
                }
            }
        }
        // Closing the file here rather than at destruction lets the caller read it at once.
        format_.reset();
        codec_.reset();
        lastError_ = result;
        return result;
    }

    std::int64_t framesWritten() const override { return framesWritten_; }

    bool created() const { return created_; }

    std::int64_t bytesWritten() const override {
        return format_ && format_->pb != nullptr ? avio_tell(format_->pb) : 0;
    }

private:
    // Quality 1..31 to the quantiser 31..1; the default quality 28 is the quantiser 4.
    static int mjpegQuantiser(int quality) {
        constexpr int kDefaultQuality = 28;
        return 32 - std::clamp(quality > 0 ? quality : kDefaultQuality, 1, 31);
    }

    void configureCodec(const CodecChoice& choice) {
        AVCodecContext& c = *codec_;
        c.width = settings_.width;
        c.height = settings_.height;
        c.pix_fmt = choice.pixelFormat;
        c.time_base = av_inv_q(settings_.frameRate);
        c.framerate = settings_.frameRate;
        c.thread_count = settings_.threads;
        c.max_b_frames = 0;
        // By default a keyframe every second keeps exact seeking cheap for the players.
        c.gop_size = settings_.keyFrameInterval > 0
                         ? settings_.keyFrameInterval
                         : std::max(1, static_cast<int>(std::lround(av_q2d(settings_.frameRate))));
        if (choice.fullRange) {
            c.color_range = AVCOL_RANGE_JPEG;
        }
        if (format_->oformat->flags & AVFMT_GLOBALHEADER) {
            c.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        }
        if (choice.lossless) {
            return;
        }
        if (settings_.bitRate > 0) {
            c.bit_rate = settings_.bitRate;
        } else if (settings_.codec != VideoCodec::H264) {
            // A fixed quantiser: good quality without a bit-rate guess per picture size.
            c.flags |= AV_CODEC_FLAG_QSCALE;
            c.global_quality =
                FF_QP2LAMBDA *
                (settings_.codec == VideoCodec::Mjpeg ? mjpegQuantiser(settings_.quality) : 3);
        }
    }

    MediaError convert(const AVFrame& frame) {
        int code = av_frame_make_writable(converted_.get());
        if (code < 0) {
            return failure(media_error::WriteFailed, QStringLiteral("Out of memory"), code);
        }
        if (convertPictureQuickly(frame, *converted_)) {
            return MediaError::none();
        }
        SwsContext* context =
            converterFor(sws_, frame.width, frame.height, static_cast<AVPixelFormat>(frame.format),
                         frame.color_range, codec_->width, codec_->height, codec_->pix_fmt,
                         codec_->color_range, SWS_BILINEAR);
        if (context == nullptr) {
            return failure(media_error::WriteFailed, QStringLiteral("Unsupported picture format"));
        }
        sws_scale(context, frame.data, frame.linesize, 0, frame.height, converted_->data,
                  converted_->linesize);
        return MediaError::none();
    }

    MediaError drain() {
        for (;;) {
            int code = avcodec_receive_packet(codec_.get(), packet_.get());
            if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) {
                return MediaError::none();
            }
            if (code < 0) {
                return remember(
                    failure(media_error::WriteFailed, QStringLiteral("Encoding failed"), code));
            }
            packet_->duration = 1;
            av_packet_rescale_ts(packet_.get(), codec_->time_base, stream_->time_base);
            packet_->stream_index = stream_->index;
            ++written_.packets;
            written_.lastDts = packet_->dts;
            written_.endTime100ns = av_rescale_q(packet_->pts + packet_->duration,
                                                 stream_->time_base, AVRational{1, 10'000'000});
            code = av_interleaved_write_frame(format_.get(), packet_.get());
            av_packet_unref(packet_.get());
            if (code < 0) {
                return remember(
                    failure(errorNumberFor(code), QStringLiteral("Write failed"), code));
            }
            if (format_->pb != nullptr && format_->pb->error < 0) {
                return remember(failure(errorNumberFor(format_->pb->error),
                                        QStringLiteral("Write failed"), format_->pb->error));
            }
        }
    }

    // Hands what the muxer holds in its write buffer to the system four times a second of video
    // (a recording's frame numbers follow its capture time), and brings the header up to date
    // with it, so that a recording cut short by a crash reads whole and loses no more than the
    // frames the encoder still holds and that quarter second. The first frame goes out at once.
    // Emptying it more often would only cost throughput.
    void flushAndRefresh(std::int64_t frameIndex) {
        if (format_->pb == nullptr || frameIndex < nextFlushIndex_) {
            return;
        }
        avio_flush(format_->pb);
        if (refresh_) {
            written_.fileBytes = avio_tell(format_->pb);
            refresh_->refresh(*format_->pb, written_);
        }
        nextFlushIndex_ = frameIndex + framesPerFlush();
    }

    std::int64_t framesPerFlush() const {
        constexpr double kFlushesPerSecond = 4;
        return std::max<std::int64_t>(
            1, std::llround(std::ceil(av_q2d(settings_.frameRate) / kFlushesPerSecond)));
    }

    // The start of the file as the muxer wrote it, read back.
    QByteArray headerAsWritten() const {
        QFile file(settings_.path);
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        return file.read(HeaderRefresh::kHeaderBytesRead);
    }

    MediaError remember(const MediaError& error) {
        lastError_ = error;
        return error;
    }

    VideoFileSettings settings_;
    OutputContextPtr format_;
    CodecContextPtr codec_;
    AVStream* stream_ = nullptr;
    SwsPtr sws_;
    FramePtr converted_;
    PacketPtr packet_;
    std::unique_ptr<HeaderRefresh> refresh_;
    WrittenSoFar written_;
    std::int64_t lastIndex_ = -1;
    std::int64_t nextFlushIndex_ = 0;
    std::int64_t framesWritten_ = 0;
    bool created_ = false;
    bool headerWritten_ = false;
    bool finished_ = false;
    MediaError lastError_;
};

} // namespace

std::unique_ptr<VideoFileWriter> VideoFileWriter::open(const VideoFileSettings& settings,
                                                       MediaError& error) {
    auto writer = std::make_unique<FfmpegVideoFileWriter>();
    error = writer->open(settings);
    if (!error.ok()) {
        // Nothing useful was written: leave no half-made file behind.
        const bool created = writer->created();
        writer->finish();
        writer.reset();
        if (created) {
            QFile::remove(settings.path);
        }
        return nullptr;
    }
    return writer;
}

} // namespace ravelcue::media::ffmpeg
