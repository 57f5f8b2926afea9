#pragma once

#include "AppState.h"

#include <array>
#include <cstdint>
#include <string>

namespace ravelcue {

class SettingsStore;

inline constexpr const char* kDefaultWmvProfile = "Video for broadband NTSC (1500 Kbps total)";
inline constexpr const char* kCheckForUpdateSetting = "Startup CheckForUpdate Enable";

// The compressors' own settings for AVI captures. Zero keeps the encoder's own choice: a key
// frame every second and, without a bit rate, a fixed quality.
struct CodecSettings {
    int MjpegQuality = 28;        // 1 (smallest files) to 31 (best pictures)
    int H264BitRate = 0;          // kbit/s
    int H264KeyFrameInterval = 0; // frames
    int Mpeg4BitRate = 0;         // kbit/s
    int Mpeg4KeyFrameInterval = 0;

    bool operator==(const CodecSettings&) const = default;
};

inline constexpr int kMinMjpegQuality = 1;
inline constexpr int kMaxMjpegQuality = 31;
inline constexpr int kMaxBitRateKbps = 100'000;
inline constexpr int kMaxKeyFrameInterval = 600;

// The persisted settings, loaded once at start-up and changed by the Setup dialog.
struct AppSettings {
    int Units = 0;          // 0 inches and mph, 1 centimetres and kph
    int Cueball = 1;        // 1: the ball's diameter is taken off the distance
    int EnableDistance = 1; // 1: txtDistance is filled with Distance at start-up
    float Distance = 48.0F;
    std::int32_t MarkerColor = 65280; // red in the low byte
    int MarkerWidth = 2;
    std::string AviCodec = "None";
    std::string WmvProfile = kDefaultWmvProfile;
    std::string CaptureType = "AVI";
    CodecSettings Codec;
    std::array<std::string, kCameraCount> VideoSource{};
    std::array<int, kCameraCount> VideoDeviceIndex{0, 1, 2, 3};
    std::array<std::string, kCameraCount> VideoSize{"640x480", "640x480", "640x480", "640x480"};
    std::array<std::string, kCameraCount> FrameRate{"30", "30", "30", "30"};
    std::array<int, kCameraCount> CamEnable{};
    std::array<std::string, kCameraCount> CamNickname{"Cam1", "Cam2", "Cam3", "Cam4"};
    std::string AudioSource;
    int AudioDeviceIndex = 0;

    bool cameraEnabled(int i) const { return CamEnable.at(static_cast<size_t>(i)) == 1; }
};

// Reads every value in its order. Missing values, values too long to read and numbers that do
// not convert take their defaults.
AppSettings LoadSettings(const SettingsStore& store);

// Writes the values in the order Setup's OK writes them: the general values and every camera's
// values, then the update choice and the audio values. updateCheck is the stored
// "Startup CheckForUpdate Enable" text.
void SaveSettings(SettingsStore& store, const AppSettings& settings, std::string_view updateCheck);

// The name of a per-camera value: "Video Size-" and 0 gives "Video Size-0".
std::string cameraSettingName(std::string_view prefix, int camera);

} // namespace ravelcue
