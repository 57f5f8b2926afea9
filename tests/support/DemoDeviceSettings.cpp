#include "DemoDeviceSettings.h"

#include "core/AppSettings.h"

namespace ravelcue::test {

void storeDemoDevices(SettingsStore& store, const media::DeviceCatalog& devices,
                      int enabledCameras) {
    int camera = 0;
    for (int i = 0; i < devices.VideoDeviceCount() && camera < 4; ++i) {
        const QString name = devices.VideoDeviceName(i);
        if (name.startsWith(QLatin1String("Demo Camera"))) {
            store.writeText(cameraSettingName("Video Source-", camera),
                            QStringLiteral("%1(%2)").arg(name).arg(i).toStdString());
            store.writeText(cameraSettingName("Video Device Index-", camera), std::to_string(i));
            store.writeText(cameraSettingName("CamEnable-", camera),
                            camera < enabledCameras ? "1" : "0");
            ++camera;
        }
    }
    for (int i = 0; i < devices.AudioDeviceCount(); ++i) {
        if (devices.AudioDeviceName(i) == QLatin1String("Demo Microphone")) {
            store.writeText("Audio Source", "Demo Microphone");
            store.writeText("Audio Device Index", std::to_string(i));
        }
    }
}

} // namespace ravelcue::test
