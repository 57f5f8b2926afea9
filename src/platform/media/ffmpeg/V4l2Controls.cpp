#include "V4l2Controls.h"

#ifdef __linux__
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>
#endif

#include <cstring>

namespace ravelcue::media::ffmpeg {

#ifdef __linux__

namespace {

QString textOf(const unsigned char* text, size_t size) {
    return QString::fromLatin1(
        reinterpret_cast<const char*>(text),
        static_cast<qsizetype>(strnlen(reinterpret_cast<const char*>(text), size)));
}

std::vector<std::pair<int, QString>> menuOf(const DeviceIoctl& ioctl, const v4l2_queryctrl& query) {
    std::vector<std::pair<int, QString>> entries;
    for (int index = query.minimum; index <= query.maximum; ++index) {
        v4l2_querymenu item{};
        item.id = query.id;
        item.index = static_cast<std::uint32_t>(index);
        // Menus may have holes: an index the driver does not know is skipped.
        if (ioctl(VIDIOC_QUERYMENU, &item) == 0) {
            entries.emplace_back(index, textOf(item.name, sizeof item.name));
        }
    }
    return entries;
}

template <typename Run>
auto withDevice(const QString& devicePath, Run run, decltype(run(DeviceIoctl())) failed) {
    const int fd = ::open(devicePath.toLocal8Bit().constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return failed;
    }
    auto result =
        run([fd](unsigned long request, void* argument) { return ::ioctl(fd, request, argument); });
    ::close(fd);
    return result;
}

} // namespace

std::vector<DeviceControl> enumerateV4l2Controls(const DeviceIoctl& ioctl) {
    std::vector<DeviceControl> controls;
    v4l2_queryctrl query{};
    query.id = V4L2_CTRL_FLAG_NEXT_CTRL;
    while (ioctl(VIDIOC_QUERYCTRL, &query) == 0) {
        const std::uint32_t next = query.id | V4L2_CTRL_FLAG_NEXT_CTRL;
        const bool shown =
            (query.flags & V4L2_CTRL_FLAG_DISABLED) == 0 &&
            (query.type == V4L2_CTRL_TYPE_INTEGER || query.type == V4L2_CTRL_TYPE_BOOLEAN ||
             query.type == V4L2_CTRL_TYPE_MENU);
        if (shown) {
            DeviceControl control;
            control.id = query.id;
            control.name = textOf(query.name, sizeof query.name);
            control.kind = query.type == V4L2_CTRL_TYPE_BOOLEAN ? DeviceControl::Kind::Boolean
                           : query.type == V4L2_CTRL_TYPE_MENU  ? DeviceControl::Kind::Menu
                                                                : DeviceControl::Kind::Integer;
            control.minimum = query.minimum;
            control.maximum = query.maximum;
            control.step = query.step > 0 ? query.step : 1;
            control.defaultValue = query.default_value;
            control.inactive = (query.flags & V4L2_CTRL_FLAG_INACTIVE) != 0;
            v4l2_control current{};
            current.id = query.id;
            control.value =
                ioctl(VIDIOC_G_CTRL, &current) == 0 ? current.value : query.default_value;
            if (control.kind == DeviceControl::Kind::Menu) {
                control.menu = menuOf(ioctl, query);
            }
            controls.push_back(std::move(control));
        }
        query = {};
        query.id = next;
    }
    return controls;
}

bool setV4l2Control(const DeviceIoctl& ioctl, unsigned id, int value) {
    v4l2_control control{};
    control.id = id;
    control.value = value;
    return ioctl(VIDIOC_S_CTRL, &control) == 0;
}

std::vector<DeviceControl> queryV4l2Controls(const QString& devicePath) {
    return withDevice(
        devicePath, [](const DeviceIoctl& ioctl) { return enumerateV4l2Controls(ioctl); },
        std::vector<DeviceControl>{});
}

bool setV4l2Control(const QString& devicePath, unsigned id, int value) {
    return withDevice(
        devicePath,
        [id, value](const DeviceIoctl& ioctl) { return setV4l2Control(ioctl, id, value); }, false);
}

#else

std::vector<DeviceControl> enumerateV4l2Controls(const DeviceIoctl&) {
    return {};
}

bool setV4l2Control(const DeviceIoctl&, unsigned, int) {
    return false;
}

std::vector<DeviceControl> queryV4l2Controls(const QString&) {
    return {};
}

bool setV4l2Control(const QString&, unsigned, int) {
    return false;
}

#endif

} // namespace ravelcue::media::ffmpeg
