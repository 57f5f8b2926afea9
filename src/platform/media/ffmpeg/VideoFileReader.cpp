#include "VideoFileReader.h"

#include "FrameIndexing.h"

extern "C" {
#include <libavutil/display.h>
}

#include <algorithm>
#include <cmath>

namespace ravelcue::media::ffmpeg {

namespace {

MediaError failure(int number, const QString& text) {
    return {number, text};
}

int rotationOf(const AVStream& stream) {
    const auto* matrix = reinterpret_cast<const int32_t*>(
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
    if (matrix == nullptr) {
        return 0;
    }
    // The matrix turns counter-clockwise; the picture must be turned back the other way.
    double degrees = -std::round(av_display_rotation_get(matrix));
    degrees -= 360.0 * std::floor(degrees / 360.0 + 0.9 / 360.0);
    const int quarter = static_cast<int>(std::lround(degrees / 90.0)) % 4;
    return quarter * 90;
}

bool isImageFormat(const AVInputFormat& format) {
    const QString name = QString::fromLatin1(format.name);
    return name.startsWith(QLatin1String("image2")) || name.endsWith(QLatin1String("_pipe"));
}

} // namespace

std::unique_ptr<VideoFileReader> VideoFileReader::open(const QString& path, MediaError& error,
                                                       std::shared_ptr<const FrameIndex> known) {
    return openWith(path, error, std::move(known), false);
}

std::unique_ptr<VideoFileReader> VideoFileReader::openIndexed(const QString& path,
                                                              MediaError& error) {
    return openWith(path, error, nullptr, true);
}

std::unique_ptr<VideoFileReader> VideoFileReader::openWith(const QString& path, MediaError& error,
                                                           std::shared_ptr<const FrameIndex> known,
                                                           bool readIndex) {
    std::unique_ptr<VideoFileReader> source(new VideoFileReader);
    error = source->openInput(path);
    if (!error && source->stillImage_) {
        error = source->buildIndex();
        if (!error) {
            // The image demuxers do not go back once read; reading the file anew is as cheap.
            error = source->openInput(path);
        }
    } else if (!error && known) {
        source->index_ = std::move(known);
    } else if (!error && readIndex) {
        error = source->buildIndex();
    } else if (!error) {
        source->estimateIndex();
    }
    if (!error) {
        error = source->openDecoder();
    }
    if (!error && !source->stillImage_ && source->index_->exact() && !source->seekToKeyframe(0)) {
        error = failure(media_error::UnreadableFile,
                        QStringLiteral("Cannot return to the first frame"));
    }
    if (error) {
        return nullptr;
    }
    return source;
}

VideoFileReader::~VideoFileReader() = default;

MediaError VideoFileReader::openInput(const QString& path) {
    if (MediaError error = openVideoInput(path, input_, stream_)) {
        return error;
    }
    rotation_ = rotationOf(*stream_);
    stillImage_ = isImageFormat(*input_->iformat);
    return MediaError::none();
}

MediaError VideoFileReader::buildIndex() {
    IndexPackets packets = timingOf(*stream_);
    if (MediaError error = readIndexPackets(*input_, *stream_, packets)) {
        return error;
    }
    index_ = packets.build();
    return MediaError::none();
}

void VideoFileReader::estimateIndex() {
    const IndexPackets timing = timingOf(*stream_);
    AVRational rate = timing.frameRate;
    if (rate.num <= 0 || rate.den <= 0) {
        rate = {25, 1};
    }
    // The duration leaves out what an edit list cuts; the count of packets does not.
    double seconds = 0;
    if (stream_->duration != AV_NOPTS_VALUE && stream_->duration > 0) {
        seconds = static_cast<double>(stream_->duration) * av_q2d(stream_->time_base);
    } else if (input_->duration != AV_NOPTS_VALUE && input_->duration > 0) {
        seconds = static_cast<double>(input_->duration) / AV_TIME_BASE;
    }
    const std::int64_t frames =
        seconds > 0 ? std::llround(seconds * av_q2d(rate)) : stream_->nb_frames;
    const std::int64_t first = stream_->start_time != AV_NOPTS_VALUE ? stream_->start_time : 0;
    index_ = std::make_shared<const FrameIndex>(
        FrameIndex::estimate(frames, stream_->time_base, first, rate));
    awaitingKeyframe_ = true;
}

void VideoFileReader::adoptIndex(std::shared_ptr<const FrameIndex> index) {
    index_ = std::move(index);
}

MediaError VideoFileReader::openDecoder() {
    const AVCodec* decoder = avcodec_find_decoder(stream_->codecpar->codec_id);
    if (decoder == nullptr) {
        return failure(
            media_error::NoDecoder,
            QStringLiteral("No decoder for %1")
                .arg(QString::fromLatin1(avcodec_get_name(stream_->codecpar->codec_id))));
    }
    codec_.reset(avcodec_alloc_context3(decoder));
    int result = avcodec_parameters_to_context(codec_.get(), stream_->codecpar);
    if (result >= 0) {
        codec_->pkt_timebase = stream_->time_base;
        codec_->thread_count = 0;
        // Frame threads hold back each picture until more are under way: worth it for the long
        // groups of pictures of H.264, a loss where any frame decodes alone (MJPEG).
        const AVCodecDescriptor* kind = avcodec_descriptor_get(stream_->codecpar->codec_id);
        const bool intraOnly = index_->exact()
                                   ? index_->everyFrameIsKeyframe()
                                   : kind != nullptr && (kind->props & AV_CODEC_PROP_INTRA_ONLY);
        codec_->thread_type = intraOnly ? FF_THREAD_SLICE : FF_THREAD_FRAME | FF_THREAD_SLICE;
        result = avcodec_open2(codec_.get(), decoder, nullptr);
    }
    if (result < 0) {
        return failure(media_error::NoDecoder,
                       QStringLiteral("Cannot open the decoder: %1").arg(errorText(result)));
    }
    return MediaError::none();
}

AVRational VideoFileReader::frameRate() const {
    AVRational rate = stream_->avg_frame_rate;
    if (rate.num > 0 && rate.den > 0) {
        return rate;
    }
    const double durationMs = index_->durationMs();
    if (durationMs > 0 && index_->count() > 0) {
        return av_d2q(index_->count() * 1000.0 / durationMs, 100000);
    }
    return {25, 1};
}

bool VideoFileReader::seekToKeyframe(std::int64_t keyframe) {
    const std::int64_t stampValue = index_->seekStamp(index_->clampFrame(keyframe));
    int result = av_seek_frame(input_.get(), stream_->index, stampValue, AVSEEK_FLAG_BACKWARD);
    if (result < 0) {
        result =
            avformat_seek_file(input_.get(), stream_->index, INT64_MIN, stampValue, stampValue, 0);
    }
    if (result < 0 && keyframe == 0) {
        result =
            avformat_seek_file(input_.get(), -1, INT64_MIN, INT64_MIN, INT64_MIN, AVSEEK_FLAG_BYTE);
    }
    avcodec_flush_buffers(codec_.get());
    inputEnded_ = false;
    ended_ = false;
    lastNumber_ = index_->clampFrame(keyframe) - 1;
    flushed_ = 0;
    rebaseOnNextPacket_ = !index_->framesCarryStamps();
    // Demuxers that search by stamp may land between keyframes; what comes before the next
    // keyframe would decode against missing pictures.
    awaitingKeyframe_ = !index_->exact() || index_->marksKeyframes();
    return result >= 0;
}

bool VideoFileReader::feedDecoder() {
    while (!inputEnded_) {
        const int result = av_read_frame(input_.get(), packet_.get());
        if (result < 0) {
            inputEnded_ = true;
            avcodec_send_packet(codec_.get(), nullptr);
            return true;
        }
        if (packet_->stream_index != stream_->index) {
            av_packet_unref(packet_.get());
            continue;
        }
        if (awaitingKeyframe_ && (packet_->flags & AV_PKT_FLAG_KEY) == 0) {
            av_packet_unref(packet_.get());
            continue;
        }
        awaitingKeyframe_ = false;
        if (rebaseOnNextPacket_) {
            // Without presentation stamps frames are counted; the count starts at the keyframe
            // the demuxer actually landed on.
            rebaseOnNextPacket_ = false;
            const std::int64_t landed = index_->marksKeyframes()
                                            ? index_->keyframeOfPacket(packet_->pts, packet_->dts)
                                            : index_->decodePosition(packet_->dts);
            if (landed >= 0) {
                lastNumber_ = landed - 1;
            }
        }
        const bool skippable = skipBefore_ >= 0 && index_->framesCarryStamps() &&
                               packet_->pts != AV_NOPTS_VALUE &&
                               packet_->pts < index_->stamp(index_->clampFrame(skipBefore_));
        codec_->skip_frame = skippable ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
        avcodec_send_packet(codec_.get(), packet_.get()); // a damaged packet is passed over
        av_packet_unref(packet_.get());
        return true;
    }
    return false;
}

std::int64_t VideoFileReader::numberFor(const AVFrame& frame) {
    if (index_->framesCarryStamps() && frame.pts != AV_NOPTS_VALUE) {
        const std::int64_t number = index_->frameOfStamp(frame.pts);
        if (number >= 0) {
            lastNumber_ = number;
            return number;
        }
    }
    if (!index_->framesCarryStamps() && index_->outputDelay() > 0 &&
        (frame.pkt_dts != AV_NOPTS_VALUE || inputEnded_)) {
        // What the decoder still held at the end of the file was pushed out by the end, one
        // packet past the last: a keyframe there follows a B-frame it was decoded before.
        const std::int64_t pushedBy = frame.pkt_dts != AV_NOPTS_VALUE
                                          ? index_->decodePosition(frame.pkt_dts)
                                          : index_->decodeCount() + flushed_++;
        if (pushedBy >= index_->outputDelay()) {
            lastNumber_ = std::max(lastNumber_ + 1, pushedBy - index_->outputDelay());
            return lastNumber_;
        }
    }
    return ++lastNumber_;
}

std::optional<DecodedFrame> VideoFileReader::next() {
    if (ended_) {
        return std::nullopt;
    }
    FramePtr frame = makeFrame();
    for (;;) {
        const int result = avcodec_receive_frame(codec_.get(), frame.get());
        if (result == 0) {
            const std::int64_t number = numberFor(*frame);
            return DecodedFrame{SharedFrame(frame.release(), FrameDeleter{}), number};
        }
        if (result == AVERROR_EOF) {
            ended_ = true;
            return std::nullopt;
        }
        if (result != AVERROR(EAGAIN) && inputEnded_) {
            ended_ = true;
            return std::nullopt;
        }
        if (!feedDecoder()) {
            ended_ = true;
            return std::nullopt;
        }
    }
}

} // namespace ravelcue::media::ffmpeg
