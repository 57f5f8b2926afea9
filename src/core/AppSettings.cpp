#include "AppSettings.h"

#include "SettingsStore.h"
#include "TextNumbers.h"

#include <limits>

namespace ravelcue {

namespace {

int readInt16(const SettingsStore& store, std::string_view name, int defaultValue) {
    const std::string text = RegistryRead(store, name, std::to_string(defaultValue));
    return static_cast<int>(parseInteger(text, -32768, 32767).value_or(defaultValue));
}

std::int32_t readInt32(const SettingsStore& store, std::string_view name,
                       std::int32_t defaultValue) {
    const std::string text = RegistryRead(store, name, std::to_string(defaultValue));
    return static_cast<std::int32_t>(parseInteger(text, std::numeric_limits<std::int32_t>::min(),
                                                  std::numeric_limits<std::int32_t>::max())
                                         .value_or(defaultValue));
}

// A whole number within [low, high]; anything else takes the default.
int readRanged(const SettingsStore& store, std::string_view name, int defaultValue, int low,
               int high) {
    const std::string text = RegistryRead(store, name, std::to_string(defaultValue));
    return static_cast<int>(parseInteger(text, low, high).value_or(defaultValue));
}

CodecSettings readCodecSettings(const SettingsStore& store) {
    const CodecSettings d;
    CodecSettings c;
    c.MjpegQuality =
        readRanged(store, "Mjpeg Quality", d.MjpegQuality, kMinMjpegQuality, kMaxMjpegQuality);
    c.H264BitRate = readRanged(store, "H264 Bit Rate", d.H264BitRate, 0, kMaxBitRateKbps);
    c.H264KeyFrameInterval = readRanged(store, "H264 Key Frame Interval", d.H264KeyFrameInterval, 0,
                                        kMaxKeyFrameInterval);
    c.Mpeg4BitRate = readRanged(store, "Mpeg4 Bit Rate", d.Mpeg4BitRate, 0, kMaxBitRateKbps);
    c.Mpeg4KeyFrameInterval = readRanged(store, "Mpeg4 Key Frame Interval", d.Mpeg4KeyFrameInterval,
                                         0, kMaxKeyFrameInterval);
    return c;
}

void writeCodecSettings(SettingsStore& store, const CodecSettings& c) {
    RegistryWrite(store, "Mjpeg Quality", std::to_string(c.MjpegQuality));
    RegistryWrite(store, "H264 Bit Rate", std::to_string(c.H264BitRate));
    RegistryWrite(store, "H264 Key Frame Interval", std::to_string(c.H264KeyFrameInterval));
    RegistryWrite(store, "Mpeg4 Bit Rate", std::to_string(c.Mpeg4BitRate));
    RegistryWrite(store, "Mpeg4 Key Frame Interval", std::to_string(c.Mpeg4KeyFrameInterval));
}

float readFloat(const SettingsStore& store, std::string_view name, float defaultValue) {
    const std::string text = RegistryRead(store, name, floatText(defaultValue));
    const std::optional<double> number = parseNumber(text);
    if (!number || *number > std::numeric_limits<float>::max() ||
        *number < -std::numeric_limits<float>::max()) {
        return defaultValue;
    }
    return static_cast<float>(*number);
}

} // namespace

std::string cameraSettingName(std::string_view prefix, int camera) {
    return std::string(prefix) + std::to_string(camera);
}

AppSettings LoadSettings(const SettingsStore& store) {
    AppSettings s;
    const AppSettings defaults;
    s.Units = readInt16(store, "Units", defaults.Units);
    s.Cueball = readInt16(store, "Cueball", defaults.Cueball);
    s.EnableDistance = readInt16(store, "Enable Distance", defaults.EnableDistance);
    s.Distance = readFloat(store, "Distance", defaults.Distance);
    s.MarkerColor = readInt32(store, "Marker Color", defaults.MarkerColor);
    s.MarkerWidth = readInt16(store, "Marker Width", defaults.MarkerWidth);
    s.AviCodec = RegistryRead(store, "Avi Codec", defaults.AviCodec);
    s.WmvProfile = RegistryRead(store, "Wmv Profile", defaults.WmvProfile);
    s.CaptureType = RegistryRead(store, "Capture Type", defaults.CaptureType);
    s.Codec = readCodecSettings(store);
    for (int i = 0; i < kCameraCount; ++i) {
        const auto k = static_cast<size_t>(i);
        s.VideoSource[k] = RegistryRead(store, cameraSettingName("Video Source-", i), "");
        s.VideoDeviceIndex[k] = readInt16(store, cameraSettingName("Video Device Index-", i), i);
        s.VideoSize[k] =
            RegistryRead(store, cameraSettingName("Video Size-", i), defaults.VideoSize[k]);
        s.FrameRate[k] =
            RegistryRead(store, cameraSettingName("Frame Rate-", i), defaults.FrameRate[k]);
        s.CamEnable[k] = readInt16(store, cameraSettingName("CamEnable-", i), 0);
        s.CamNickname[k] =
            RegistryRead(store, cameraSettingName("CamNickname-", i), defaults.CamNickname[k]);
    }
    s.AudioSource = RegistryRead(store, "Audio Source", "");
    s.AudioDeviceIndex = readInt16(store, "Audio Device Index", 0);
    return s;
}

void SaveSettings(SettingsStore& store, const AppSettings& s, std::string_view updateCheck) {
    RegistryWrite(store, "Marker Color", std::to_string(s.MarkerColor));
    RegistryWrite(store, "Marker Width", std::to_string(s.MarkerWidth));
    RegistryWrite(store, "Units", std::to_string(s.Units));
    RegistryWrite(store, "Cueball", std::to_string(s.Cueball));
    RegistryWrite(store, "Enable Distance", std::to_string(s.EnableDistance));
    RegistryWrite(store, "Distance", floatText(s.Distance));
    RegistryWrite(store, "Avi Codec", s.AviCodec);
    RegistryWrite(store, "Wmv Profile", s.WmvProfile);
    RegistryWrite(store, "Capture Type", s.CaptureType);
    writeCodecSettings(store, s.Codec);
    for (int i = 0; i < kCameraCount; ++i) {
        const auto k = static_cast<size_t>(i);
        RegistryWrite(store, cameraSettingName("Video Source-", i), s.VideoSource[k]);
        RegistryWrite(store, cameraSettingName("Video Device Index-", i),
                      std::to_string(s.VideoDeviceIndex[k]));
        RegistryWrite(store, cameraSettingName("Video Size-", i), s.VideoSize[k]);
        RegistryWrite(store, cameraSettingName("Frame Rate-", i), s.FrameRate[k]);
        RegistryWrite(store, cameraSettingName("CamEnable-", i), std::to_string(s.CamEnable[k]));
        RegistryWrite(store, cameraSettingName("CamNickname-", i), s.CamNickname[k]);
    }
    RegistryWrite(store, kCheckForUpdateSetting, updateCheck);
    RegistryWrite(store, "Audio Source", s.AudioSource);
    RegistryWrite(store, "Audio Device Index", std::to_string(s.AudioDeviceIndex));
}

} // namespace ravelcue
