#include "V4l2Modes.h"

#ifdef __linux__
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace ravelcue::media::ffmpeg {

#ifdef __linux__

namespace {

QString fourcc(std::uint32_t code) {
    QString text;
    for (int shift = 0; shift < 32; shift += 8) {
        const char c = static_cast<char>((code >> shift) & 0xFF);
        if (c != ' ' && c != '\0') {
            text.append(QLatin1Char(c));
        }
    }
    return text;
}

double rateOf(const v4l2_fract& interval) {
    return interval.numerator == 0 ? 0.0
                                   : static_cast<double>(interval.denominator) / interval.numerator;
}

std::vector<QSize> sizesOf(const DeviceIoctl& ioctl, std::uint32_t pixelFormat) {
    std::vector<QSize> sizes;
    for (std::uint32_t index = 0;; ++index) {
        v4l2_frmsizeenum size{};
        size.index = index;
        size.pixel_format = pixelFormat;
        if (ioctl(VIDIOC_ENUM_FRAMESIZES, &size) != 0) {
            break;
        }
        if (size.type == V4L2_FRMSIZE_TYPE_DISCRETE) {
            sizes.emplace_back(static_cast<int>(size.discrete.width),
                               static_cast<int>(size.discrete.height));
            continue;
        }
        sizes.emplace_back(static_cast<int>(size.stepwise.max_width),
                           static_cast<int>(size.stepwise.max_height));
        sizes.emplace_back(static_cast<int>(size.stepwise.min_width),
                           static_cast<int>(size.stepwise.min_height));
        break;
    }
    return sizes;
}

std::vector<double> ratesOf(const DeviceIoctl& ioctl, std::uint32_t pixelFormat, QSize size) {
    std::vector<double> rates;
    for (std::uint32_t index = 0;; ++index) {
        v4l2_frmivalenum interval{};
        interval.index = index;
        interval.pixel_format = pixelFormat;
        interval.width = static_cast<std::uint32_t>(size.width());
        interval.height = static_cast<std::uint32_t>(size.height());
        if (ioctl(VIDIOC_ENUM_FRAMEINTERVALS, &interval) != 0) {
            break;
        }
        if (interval.type == V4L2_FRMIVAL_TYPE_DISCRETE) {
            rates.push_back(rateOf(interval.discrete));
            continue;
        }
        // The shortest interval is the fastest rate.
        rates.push_back(rateOf(interval.stepwise.min));
        rates.push_back(rateOf(interval.stepwise.max));
        break;
    }
    return rates;
}

} // namespace

std::vector<VideoMode> enumerateV4l2Modes(const DeviceIoctl& ioctl) {
    std::vector<VideoMode> modes;
    for (std::uint32_t index = 0;; ++index) {
        v4l2_fmtdesc format{};
        format.index = index;
        format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        if (ioctl(VIDIOC_ENUM_FMT, &format) != 0) {
            break;
        }
        for (const QSize size : sizesOf(ioctl, format.pixelformat)) {
            for (const double rate : ratesOf(ioctl, format.pixelformat, size)) {
                if (rate > 0) {
                    modes.push_back({size, rate, fourcc(format.pixelformat)});
                }
            }
        }
    }
    return modes;
}

std::vector<VideoMode> queryV4l2Modes(const QString& devicePath) {
    const int fd = ::open(devicePath.toLocal8Bit().constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return {};
    }
    std::vector<VideoMode> modes = enumerateV4l2Modes(
        [fd](unsigned long request, void* argument) { return ::ioctl(fd, request, argument); });
    ::close(fd);
    return modes;
}

#else

std::vector<VideoMode> enumerateV4l2Modes(const DeviceIoctl&) {
    return {};
}

std::vector<VideoMode> queryV4l2Modes(const QString&) {
    return {};
}

#endif

} // namespace ravelcue::media::ffmpeg
