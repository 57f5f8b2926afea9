#include "SystemDeviceCatalog.h"

#include "../demo/DemoScene.h"

#include <QAudioDevice>
#include <QCameraDevice>
#include <QDir>
#include <QMediaDevices>

extern "C" {
#include <libavdevice/avdevice.h>
}

#ifdef __linux__
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>
#endif

#include <algorithm>

namespace ravelcue::media::ffmpeg {

namespace {

#ifdef __linux__
// Asks each /dev/video node what it is. Nodes that only carry metadata (a second node of most
// USB cameras) are left out. Opening a node this way starts no stream and does not block.
std::vector<VideoDeviceEntry> linuxCameras() {
    std::vector<std::pair<int, VideoDeviceEntry>> found;
    const QStringList nodes =
        QDir(QStringLiteral("/dev")).entryList({QStringLiteral("video*")}, QDir::System);
    for (const QString& node : nodes) {
        bool numbered = false;
        const int number = node.mid(5).toInt(&numbered);
        if (!numbered) {
            continue;
        }
        const QByteArray path = QByteArrayLiteral("/dev/") + node.toLatin1();
        const int fd = ::open(path.constData(), O_RDWR | O_NONBLOCK);
        if (fd < 0) {
            continue;
        }
        v4l2_capability capability{};
        const bool queried = ::ioctl(fd, VIDIOC_QUERYCAP, &capability) == 0;
        ::close(fd);
        if (!queried) {
            continue;
        }
        const std::uint32_t caps = (capability.capabilities & V4L2_CAP_DEVICE_CAPS)
                                       ? capability.device_caps
                                       : capability.capabilities;
        if (!(caps & V4L2_CAP_VIDEO_CAPTURE)) {
            continue;
        }
        VideoDeviceEntry entry;
        entry.name = QString::fromUtf8(reinterpret_cast<const char*>(capability.card)).trimmed();
        entry.inputFormat = QStringLiteral("video4linux2");
        entry.url = QString::fromLatin1(path);
        found.emplace_back(number, entry);
    }
    std::sort(found.begin(), found.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<VideoDeviceEntry> cameras;
    for (auto& [number, entry] : found) {
        cameras.push_back(std::move(entry));
    }
    return cameras;
}
#endif

#ifdef _WIN32
std::vector<VideoDeviceEntry> dshowCameras() {
    std::vector<VideoDeviceEntry> cameras;
    const AVInputFormat* dshow = av_find_input_format("dshow");
    AVDeviceInfoList* list = nullptr;
    if (dshow == nullptr || avdevice_list_input_sources(dshow, nullptr, nullptr, &list) < 0) {
        return cameras;
    }
    for (int i = 0; i < list->nb_devices; ++i) {
        const AVDeviceInfo* device = list->devices[i];
        const bool video =
            std::any_of(device->media_types, device->media_types + device->nb_media_types,
                        [](AVMediaType t) { return t == AVMEDIA_TYPE_VIDEO; });
        if (!video) {
            continue;
        }
        const QString name = QString::fromUtf8(device->device_description);
        cameras.push_back({name, QStringLiteral("dshow"), QStringLiteral("video=") + name, 0});
    }
    avdevice_free_list_devices(&list);
    return cameras;
}
#endif

} // namespace

std::vector<VideoDeviceEntry> systemCameras() {
#if defined(__linux__)
    return linuxCameras();
#elif defined(_WIN32)
    return dshowCameras();
#elif defined(__APPLE__)
    // AVFoundation opens a camera by its name.
    std::vector<VideoDeviceEntry> cameras;
    for (const QCameraDevice& camera : QMediaDevices::videoInputs()) {
        cameras.push_back(
            {camera.description(), QStringLiteral("avfoundation"), camera.description(), 0});
    }
    return cameras;
#else
    return {};
#endif
}

SystemDeviceCatalog::SystemDeviceCatalog(std::vector<VideoDeviceEntry> addedCameras)
    : addedCameras_(std::move(addedCameras)) {
    refresh();
}

void SystemDeviceCatalog::refresh() {
    video_ = systemCameras();
    video_.insert(video_.end(), addedCameras_.begin(), addedCameras_.end());
    for (int n = 1; n <= kDemoCameraCount; ++n) {
        video_.push_back({QStringLiteral("Demo Camera %1").arg(n), {}, {}, n});
    }
    audio_.clear();
    for (const QAudioDevice& input : QMediaDevices::audioInputs()) {
        audio_.push_back({input.description(), input.id(), false});
    }
    audio_.push_back({QStringLiteral("Demo Microphone"), {}, true});
}

int SystemDeviceCatalog::VideoDeviceCount() const {
    return static_cast<int>(video_.size());
}

QString SystemDeviceCatalog::VideoDeviceName(int index) const {
    const VideoDeviceEntry* entry = videoDevice(index);
    return entry != nullptr ? entry->name : QString();
}

int SystemDeviceCatalog::AudioDeviceCount() const {
    return static_cast<int>(audio_.size());
}

QString SystemDeviceCatalog::AudioDeviceName(int index) const {
    const AudioDeviceEntry* entry = audioDevice(index);
    return entry != nullptr ? entry->name : QString();
}

const VideoDeviceEntry* SystemDeviceCatalog::videoDevice(int index) const {
    return index >= 0 && index < VideoDeviceCount() ? &video_[size_t(index)] : nullptr;
}

const AudioDeviceEntry* SystemDeviceCatalog::audioDevice(int index) const {
    return index >= 0 && index < AudioDeviceCount() ? &audio_[size_t(index)] : nullptr;
}

} // namespace ravelcue::media::ffmpeg
