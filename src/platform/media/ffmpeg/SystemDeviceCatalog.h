#pragma once

#include "../DeviceCatalog.h"

#include <vector>

#include <QByteArray>
#include <QString>

namespace ravelcue::media::ffmpeg {

// A camera as the engine opens it: a device through libavdevice, or a demo camera.
struct VideoDeviceEntry {
    QString name;
    QString inputFormat; // libavdevice's name: "video4linux2", "dshow", "avfoundation"
    QString url;         // what that input opens: "/dev/video0", "video=USB Camera", ...
    int demoNumber = 0;  // 1..4 for the demo cameras, 0 for a device
};

// A microphone: one of Qt's audio inputs, or the demo microphone.
struct AudioDeviceEntry {
    QString name;
    QByteArray qtDeviceId;
    bool demo = false;
};

// The machine's cameras and microphones, then "Demo Camera 1".."Demo Camera 4" and "Demo
// Microphone". Listing only asks the system what is there and opens no stream, so a machine
// without devices starts as fast as one with them. UI thread only.
class SystemDeviceCatalog final : public DeviceCatalog {
public:
    // Added cameras are inputs the system does not report (a screen through x11grab, a stream
    // on the network); they follow the system's cameras, before the demo cameras.
    explicit SystemDeviceCatalog(std::vector<VideoDeviceEntry> addedCameras = {});

    void refresh() override;
    int VideoDeviceCount() const override;
    QString VideoDeviceName(int index) const override;
    int AudioDeviceCount() const override;
    QString AudioDeviceName(int index) const override;

    // Null for an index outside the lists.
    const VideoDeviceEntry* videoDevice(int index) const;
    const AudioDeviceEntry* audioDevice(int index) const;

private:
    std::vector<VideoDeviceEntry> addedCameras_;
    std::vector<VideoDeviceEntry> video_;
    std::vector<AudioDeviceEntry> audio_;
};

// The cameras the system reports, in its order.
std::vector<VideoDeviceEntry> systemCameras();

} // namespace ravelcue::media::ffmpeg
