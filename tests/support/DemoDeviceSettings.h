#pragma once

#include "core/SettingsStore.h"
#include "platform/media/DeviceCatalog.h"

namespace ravelcue::test {

// Stores Demo Camera 1..4 as cameras 0..3, the first `enabledCameras` of them enabled, and the
// Demo Microphone as the audio source: the real engine's devices on a machine without hardware.
void storeDemoDevices(SettingsStore& store, const media::DeviceCatalog& devices,
                      int enabledCameras = 4);

} // namespace ravelcue::test
