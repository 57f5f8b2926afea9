// The modes of a camera: the V4L2 enumeration, fed with the replies of a typical UVC webcam, and
// the order and choice of format the format dialog shows them in.

#include "platform/media/ffmpeg/V4l2Modes.h"

#include <QDir>

#include <gtest/gtest.h>

#ifdef __linux__
#include <linux/videodev2.h>
#endif

namespace ravelcue::media {
namespace {

VideoMode mode(int w, int h, double rate, const char* format) {
    return {QSize(w, h), rate, QString::fromLatin1(format)};
}

#ifdef __linux__

// What a USB webcam answers: YUYV up to 1280x720 (slow at the large sizes) and MJPG up to
// 1920x1080 at full rate, as the UVC driver reports them, plus one stepwise range.
struct RecordedCamera {
    struct Size {
        std::uint32_t width;
        std::uint32_t height;
        std::vector<std::uint32_t> fps; // discrete intervals 1/fps
    };
    struct Format {
        std::uint32_t fourcc;
        std::vector<Size> sizes;
    };
    std::vector<Format> formats{
        {V4L2_PIX_FMT_YUYV, {{640, 480, {30, 15}}, {1280, 720, {10}}, {320, 240, {30}}}},
        {V4L2_PIX_FMT_MJPEG, {{1920, 1080, {30, 15}}, {1280, 720, {60, 30}}, {640, 480, {30}}}},
    };
    int calls = 0;

    int answer(unsigned long request, void* argument) {
        ++calls;
        if (request == VIDIOC_ENUM_FMT) {
            auto* f = static_cast<v4l2_fmtdesc*>(argument);
            if (f->type != V4L2_BUF_TYPE_VIDEO_CAPTURE || f->index >= formats.size()) {
                return -1;
            }
            f->pixelformat = formats[f->index].fourcc;
            return 0;
        }
        if (request == VIDIOC_ENUM_FRAMESIZES) {
            auto* s = static_cast<v4l2_frmsizeenum*>(argument);
            const Format* format = find(s->pixel_format);
            if (format == nullptr || s->index >= format->sizes.size()) {
                return -1;
            }
            s->type = V4L2_FRMSIZE_TYPE_DISCRETE;
            s->discrete.width = format->sizes[s->index].width;
            s->discrete.height = format->sizes[s->index].height;
            return 0;
        }
        if (request == VIDIOC_ENUM_FRAMEINTERVALS) {
            auto* i = static_cast<v4l2_frmivalenum*>(argument);
            const Format* format = find(i->pixel_format);
            for (const Size& size : format != nullptr ? format->sizes : std::vector<Size>{}) {
                if (size.width == i->width && size.height == i->height &&
                    i->index < size.fps.size()) {
                    i->type = V4L2_FRMIVAL_TYPE_DISCRETE;
                    i->discrete = {1, size.fps[i->index]};
                    return 0;
                }
            }
            return -1;
        }
        return -1;
    }
    const Format* find(std::uint32_t fourcc) const {
        for (const Format& f : formats) {
            if (f.fourcc == fourcc) {
                return &f;
            }
        }
        return nullptr;
    }
};

TEST(V4l2Modes, ReadsEveryFormatSizeAndRateOfAUvcWebcam) {
    RecordedCamera camera;
    const std::vector<VideoMode> modes =
        ffmpeg::enumerateV4l2Modes([&camera](unsigned long request, void* argument) {
            return camera.answer(request, argument);
        });
    const std::vector<VideoMode> expected{
        mode(640, 480, 30, "YUYV"),  mode(640, 480, 15, "YUYV"),   mode(1280, 720, 10, "YUYV"),
        mode(320, 240, 30, "YUYV"),  mode(1920, 1080, 30, "MJPG"), mode(1920, 1080, 15, "MJPG"),
        mode(1280, 720, 60, "MJPG"), mode(1280, 720, 30, "MJPG"),  mode(640, 480, 30, "MJPG"),
    };
    EXPECT_EQ(modes, expected);

    EXPECT_EQ(preferredModes(modes),
              (std::vector<VideoMode>{mode(1920, 1080, 30, "MJPG"), mode(1920, 1080, 15, "MJPG"),
                                      mode(1280, 720, 60, "MJPG"), mode(1280, 720, 30, "MJPG"),
                                      mode(1280, 720, 10, "YUYV"), mode(640, 480, 30, "YUYV"),
                                      mode(640, 480, 15, "YUYV"), mode(320, 240, 30, "YUYV")}));
}

TEST(V4l2Modes, TakesTheEndsOfStepwiseRanges) {
    const auto stepwise = [](unsigned long request, void* argument) {
        if (request == VIDIOC_ENUM_FMT) {
            auto* f = static_cast<v4l2_fmtdesc*>(argument);
            f->pixelformat = V4L2_PIX_FMT_YUYV;
            return f->index == 0 ? 0 : -1;
        }
        if (request == VIDIOC_ENUM_FRAMESIZES) {
            auto* s = static_cast<v4l2_frmsizeenum*>(argument);
            s->type = V4L2_FRMSIZE_TYPE_STEPWISE;
            s->stepwise = {160, 1280, 16, 120, 720, 8};
            return s->index == 0 ? 0 : -1;
        }
        auto* i = static_cast<v4l2_frmivalenum*>(argument);
        i->type = V4L2_FRMIVAL_TYPE_CONTINUOUS;
        i->stepwise = {{1, 60}, {1, 5}, {1, 1}};
        return i->index == 0 ? 0 : -1;
    };
    EXPECT_EQ(ffmpeg::enumerateV4l2Modes(stepwise),
              (std::vector<VideoMode>{mode(1280, 720, 60, "YUYV"), mode(1280, 720, 5, "YUYV"),
                                      mode(160, 120, 60, "YUYV"), mode(160, 120, 5, "YUYV")}));
}

TEST(V4l2Modes, ARealDeviceAnswersWhenThereIsOne) {
    const QStringList devices =
        QDir(QStringLiteral("/dev")).entryList({QStringLiteral("video*")}, QDir::System);
    if (devices.isEmpty()) {
        GTEST_SKIP() << "no /dev/video* on this machine: the real ioctl path is not exercised";
    }
    bool any = false;
    for (const QString& name : devices) {
        for (const VideoMode& m : ffmpeg::queryV4l2Modes(QStringLiteral("/dev/") + name)) {
            any = true;
            EXPECT_FALSE(m.size.isEmpty()) << name.toStdString();
            EXPECT_GT(m.frameRate, 0) << name.toStdString();
        }
    }
    if (!any) {
        GTEST_SKIP() << "no /dev/video* device here offers a capture mode";
    }
}

#endif

TEST(PreferredModes, OneFormatPerSizeAndRateLargestAndFastestFirst) {
    EXPECT_EQ(preferredModes({mode(640, 480, 30, "MJPG"), mode(320, 240, 30, "YUYV"),
                              mode(640, 480, 30, "YUYV"), mode(800, 600, 30, "YUYV"),
                              mode(800, 600, 30, "MJPG"), mode(640, 480, 60, "MJPG")}),
              (std::vector<VideoMode>{mode(800, 600, 30, "MJPG"), mode(640, 480, 60, "MJPG"),
                                      mode(640, 480, 30, "YUYV"), mode(320, 240, 30, "YUYV")}));
}

} // namespace
} // namespace ravelcue::media
