#pragma once

#include "../VideoMode.h"

#include <functional>
#include <vector>

#include <QString>

namespace ravelcue::media::ffmpeg {

// The ioctl of one open video device: request and argument as ioctl(2) takes them, 0 on success.
// Tests answer it from replies recorded from a camera.
using DeviceIoctl = std::function<int(unsigned long request, void* argument)>;

// Every mode a V4L2 capture device offers: each pixel format (VIDIOC_ENUM_FMT), its sizes
// (VIDIOC_ENUM_FRAMESIZES; of a stepwise range its largest and smallest) and their rates
// (VIDIOC_ENUM_FRAMEINTERVALS; of a stepwise range its fastest and slowest). Empty off Linux.
std::vector<VideoMode> enumerateV4l2Modes(const DeviceIoctl& ioctl);

// Opens a device such as "/dev/video0" for the query only; empty when it cannot be opened.
std::vector<VideoMode> queryV4l2Modes(const QString& devicePath);

} // namespace ravelcue::media::ffmpeg
