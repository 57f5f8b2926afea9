#pragma once

#include "../DeviceControl.h"
#include "V4l2Modes.h"

#include <vector>

#include <QString>

namespace ravelcue::media::ffmpeg {

// Every user control a V4L2 device offers (VIDIOC_QUERYCTRL walked with the next-control flag,
// VIDIOC_QUERYMENU for the entries of menus, VIDIOC_G_CTRL for the values). Integers, booleans
// and menus; disabled controls and classes are left out. Empty off Linux.
std::vector<DeviceControl> enumerateV4l2Controls(const DeviceIoctl& ioctl);
// VIDIOC_S_CTRL; false when the device refused it.
bool setV4l2Control(const DeviceIoctl& ioctl, unsigned id, int value);

// The same on a device such as "/dev/video0", opened for the call only. The device keeps what
// is set until it is unplugged.
std::vector<DeviceControl> queryV4l2Controls(const QString& devicePath);
bool setV4l2Control(const QString& devicePath, unsigned id, int value);

} // namespace ravelcue::media::ffmpeg
