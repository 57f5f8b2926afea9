#include "RecompressJob.h"

#include "FrameConverter.h"
#include "ImageFrames.h"
#include "OverlayBurner.h"
#include "SoundtrackCopy.h"
#include "VideoFileReader.h"
#include "VideoFileWriter.h"

#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <optional>
#include <thread>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace ravelcue::media::ffmpeg {

namespace {

VideoCodec outputCodecFor(AVCodecID source) {
    switch (source) {
    case AV_CODEC_ID_MJPEG:
        return VideoCodec::Mjpeg;
    case AV_CODEC_ID_MPEG4:
        return VideoCodec::Mpeg4;
    case AV_CODEC_ID_FFV1:
        return VideoCodec::Ffv1;
    case AV_CODEC_ID_HUFFYUV:
        return VideoCodec::Huffyuv;
    case AV_CODEC_ID_RAWVIDEO:
        return VideoCodec::RawBgr;
    case AV_CODEC_ID_WMV2:
        return VideoCodec::Wmv2;
    default:
        return VideoCodec::H264;
    }
}

// Frames on their way from the decoding thread to the encoding one. Bounded, so a slow encoder
// holds the decoder back instead of filling memory.
class EncodeQueue {
public:
    static constexpr size_t kCapacity = 8;

    // False when the encoder has given up.
    bool push(FramePtr frame, std::int64_t index) {
        std::unique_lock lock(mutex_);
        spaceFree_.wait(lock, [&] { return items_.size() < kCapacity || failed_; });
        if (failed_) {
            return false;
        }
        items_.push_back({std::move(frame), index});
        filled_.notify_one();
        return true;
    }
    void close() {
        std::lock_guard lock(mutex_);
        closed_ = true;
        filled_.notify_one();
    }
    // Runs on the encoding thread until the queue is closed and empty, or a write fails.
    MediaError drainInto(VideoFileWriter& writer) {
        for (;;) {
            std::unique_lock lock(mutex_);
            filled_.wait(lock, [&] { return !items_.empty() || closed_; });
            if (items_.empty()) {
                return MediaError::none();
            }
            Item item = std::move(items_.front());
            items_.pop_front();
            spaceFree_.notify_one();
            lock.unlock();
            MediaError error = writer.write(*item.frame, item.index);
            if (error) {
                lock.lock();
                failed_ = true;
                spaceFree_.notify_all();
                return error;
            }
        }
    }

private:
    struct Item {
        FramePtr frame;
        std::int64_t index;
    };
    std::mutex mutex_;
    std::condition_variable filled_;
    std::condition_variable spaceFree_;
    std::deque<Item> items_;
    bool closed_ = false;
    bool failed_ = false;
};

struct Span {
    std::int64_t first = 0;
    std::int64_t last = 0;
};

Span spanOf(const FrameIndex& index, double startMs, double endMs) {
    Span span{0, index.count() - 1};
    if (startMs <= 0 && endMs <= 0) {
        return span;
    }
    span.first = index.frameAt(std::max(0.0, startMs));
    if (endMs > startMs) {
        // Frames that start before the end belong to the span.
        std::int64_t last = index.frameAt(endMs);
        if (last > span.first && index.timeMs(last) >= endMs) {
            --last;
        }
        span.last = last;
    }
    span.last = std::max(span.first, span.last);
    return span;
}

// A picture ready for the encoder with the overlay burnt in.
FramePtr burnt(const AVFrame& decoded, OverlayBurner& burner, FrameConverter& upright,
               bool turned) {
    if (!turned && OverlayBurner::burnsInPlace(static_cast<AVPixelFormat>(decoded.format))) {
        FramePtr frame(av_frame_clone(&decoded));
        if (!frame || (!burner.empty() && av_frame_make_writable(frame.get()) < 0)) {
            return nullptr;
        }
        burner.burnInto(*frame);
        // Full-range YUV goes on under its plain name, so the writer need not convert it.
        bool fullRange = false;
        frame->format =
            plainFormat(static_cast<AVPixelFormat>(frame->format), frame->color_range, fullRange);
        if (fullRange) {
            frame->color_range = AVCOL_RANGE_JPEG;
        }
        return frame;
    }
    // Turned pictures and odd formats are burnt as RGB.
    QImage picture = upright.toImage(decoded);
    burner.burnInto(picture);
    FramePtr view = frameViewOf(picture);
    if (!view) {
        return nullptr;
    }
    FramePtr frame = makeFrame();
    frame->format = view->format;
    frame->width = view->width;
    frame->height = view->height;
    if (av_frame_get_buffer(frame.get(), 0) < 0 || av_frame_copy(frame.get(), view.get()) < 0) {
        return nullptr;
    }
    return frame;
}

MediaError encodeSpan(VideoFileReader& source, const Span& span, const OverlayLayer& overlay,
                      const QString& path, const std::atomic<bool>& cancelled,
                      const std::function<void(int)>& progress) {
    const bool turned = source.rotationDegrees() % 360 != 0;
    const bool sideways = source.rotationDegrees() % 180 != 0;
    VideoFileSettings settings;
    settings.path = path;
    settings.width = sideways ? source.height() : source.width();
    settings.height = sideways ? source.width() : source.height();
    settings.frameRate = source.frameRate();
    settings.codec = outputCodecFor(source.codecId());
    MediaError error;
    std::unique_ptr<VideoFileWriter> writer = VideoFileWriter::open(settings, error);
    if (!writer) {
        return error;
    }

    OverlayBurner burner(overlay.composed(QSize(settings.width, settings.height)));
    FrameConverter upright(source.rotationDegrees());
    EncodeQueue queue;
    MediaError encodeError;
    std::thread encoder([&] { encodeError = queue.drainInto(*writer); });

    const std::int64_t total = span.last - span.first + 1;
    int reported = -1;
    source.skipUnreferencedBefore(span.first);
    source.seekToKeyframe(source.index()->keyframeAtOrBefore(span.first));
    std::int64_t nextIndex = 0;
    while (!cancelled) {
        std::optional<DecodedFrame> decoded = source.next();
        if (!decoded || decoded->number > span.last) {
            break;
        }
        if (decoded->number < span.first || decoded->number - span.first < nextIndex) {
            continue;
        }
        FramePtr frame = burnt(*decoded->frame, burner, upright, turned);
        if (!frame) {
            error = {media_error::WriteFailed,
                     QStringLiteral("Out of memory while burning in the markups")};
            break;
        }
        nextIndex = decoded->number - span.first;
        if (!queue.push(std::move(frame), nextIndex)) {
            break; // the encoder failed; its error is reported below
        }
        ++nextIndex;
        const int percent = static_cast<int>(nextIndex * 100 / total);
        if (percent != reported && progress) {
            reported = percent;
            progress(percent);
        }
    }
    queue.close();
    encoder.join();
    if (encodeError) {
        return encodeError;
    }
    if (error) {
        return error;
    }
    if (cancelled) {
        return {media_error::Cancelled, QStringLiteral("Cancelled")};
    }
    if (nextIndex == 0) {
        return {media_error::UnreadableFile,
                QStringLiteral("No frame of the span could be decoded")};
    }
    return writer->finish();
}

} // namespace

QString temporaryNameFor(const QString& destination, const QString& stage) {
    const QFileInfo info(destination);
    // Hidden, and the extension stays last: it picks the container.
    return info.dir().filePath(QStringLiteral(".%1.partial%2.%3")
                                   .arg(info.completeBaseName(),
                                        stage.isEmpty() ? QString() : u'-' + stage, info.suffix()));
}

MediaError recompressVideo(const RecompressRequest& request, const OverlayLayer& overlay,
                           const std::atomic<bool>& cancelled,
                           const std::function<void(int)>& progress) {
    MediaError error;
    std::unique_ptr<VideoFileReader> source = VideoFileReader::openIndexed(request.source, error);
    if (!source) {
        return error;
    }
    const FrameIndex& index = *source->index();
    const Span span = spanOf(index, request.startMs, request.endMs);
    const QString videoOnly = temporaryNameFor(request.destination);
    const QString withSound = temporaryNameFor(request.destination, QStringLiteral("sound"));
    error = encodeSpan(*source, span, overlay, videoOnly, cancelled, progress);
    QString complete = videoOnly;
    if (!error) {
        // The sound of the span is copied as it is, beside the new pictures.
        const double timeBase = av_q2d(index.timeBase());
        const double startSeconds = static_cast<double>(index.stamp(span.first)) * timeBase;
        const double endSeconds = static_cast<double>(index.stamp(span.last)) * timeBase +
                                  1.0 / av_q2d(source->frameRate());
        bool soundAdded = false;
        error = copySoundtrack(videoOnly, request.source, startSeconds, endSeconds, withSound,
                               soundAdded);
        if (soundAdded) {
            complete = withSound;
        }
    }
    if (!error) {
        std::error_code renameError;
        std::filesystem::rename(std::filesystem::path(complete.toStdU16String()),
                                std::filesystem::path(request.destination.toStdU16String()),
                                renameError);
        if (renameError) {
            error = {media_error::WriteFailed,
                     QStringLiteral("Cannot name the file %1: %2")
                         .arg(request.destination, QString::fromStdString(renameError.message()))};
        }
    }
    QFile::remove(videoOnly);
    QFile::remove(withSound);
    return error;
}

} // namespace ravelcue::media::ffmpeg
