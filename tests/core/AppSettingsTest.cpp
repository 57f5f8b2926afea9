#include "core/AppSettings.h"

#include "core/SettingsStore.h"
#include "core/VideoSize.h"

#include <gtest/gtest.h>

namespace ravelcue {
namespace {

// Settings are the same when they are saved the same: every value, by its stored name.
auto saved(const AppSettings& settings) {
    MemorySettingsStore store;
    SaveSettings(store, settings, "1");
    return store.values();
}

TEST(AppSettings, NothingStoredGivesTheDefaults) {
    EXPECT_EQ(saved(LoadSettings(MemorySettingsStore())), saved(AppSettings()));
}

TEST(AppSettings, SaveThenLoadGivesTheSameValues) {
    AppSettings s;
    s.Units = 1;
    s.Cueball = 0;
    s.Distance = 90.25F;
    s.MarkerColor = 16711935;
    s.AviCodec = "MJPEG";
    s.CaptureType = "WMV";
    s.VideoSource[2] = "Demo Camera 3(2)";
    s.VideoDeviceIndex[2] = 5;
    s.VideoSize[2] = "1280x720";
    s.FrameRate[2] = "29.97";
    s.CamEnable[2] = 1;
    s.CamNickname[2] = "Side Rail";
    s.AudioSource = "Demo Microphone";
    s.AudioDeviceIndex = 3;
    MemorySettingsStore store;
    SaveSettings(store, s, "1");
    EXPECT_EQ(store.values().at("Distance"), "90.25");
    EXPECT_EQ(store.values().at("Startup CheckForUpdate Enable"), "1");

    EXPECT_EQ(saved(LoadSettings(store)), saved(s));
}

TEST(AppSettings, HandEditedAndOddValuesFallBackOneByOne) {
    MemorySettingsStore store;
    store.writeText("Units", "abc");
    store.writeText("Cueball", "");
    store.writeText("Marker Width", "99999");
    store.writeText("Distance", "12 ft");
    store.writeText("Avi Codec", "");
    store.writeText("CamNickname-1", std::string(1024, 'x'));
    store.writeText("CamNickname-2", std::string(1023, 'y'));
    store.writeText("CamEnable-2", "1");
    store.writeText("Enable Distance", "0");
    const AppSettings s = LoadSettings(store);
    EXPECT_EQ(s.Units, 0) << "a non-number takes its default";
    EXPECT_EQ(s.Cueball, 1) << "an empty number takes its default";
    EXPECT_EQ(s.MarkerWidth, 2) << "out of range takes its default";
    EXPECT_FLOAT_EQ(s.Distance, 48.0F);
    EXPECT_EQ(s.AviCodec, "") << "a stored empty text reads as empty, not as the default";
    EXPECT_EQ(s.CamNickname[1], "Cam2") << "longer than 1023 bytes reads as the default";
    EXPECT_EQ(s.CamNickname[2], std::string(1023, 'y'));
    EXPECT_EQ(s.CamEnable[2], 1) << "enabled without a source is kept as it is";
    EXPECT_TRUE(s.VideoSource[2].empty());
    EXPECT_EQ(s.EnableDistance, 0) << "values after a bad one still load";
}

TEST(AppSettings, CodecSettingsRoundTripAndBadValuesFallBackEachToItsDefault) {
    AppSettings s;
    s.Codec = {5, 2500, 12, 800, 250};
    MemorySettingsStore store;
    SaveSettings(store, s, "0");
    EXPECT_EQ(store.values().at("Mjpeg Quality"), "5");
    EXPECT_EQ(store.values().at("H264 Key Frame Interval"), "12");
    EXPECT_EQ(LoadSettings(store).Codec, s.Codec);

    const CodecSettings defaults;
    struct Case {
        const char* name;
        const char* text;
    };
    for (const Case& c :
         {Case{"Mjpeg Quality", "high"}, Case{"Mjpeg Quality", "0"}, Case{"Mjpeg Quality", "32"},
          Case{"H264 Bit Rate", "2.5M"}, Case{"H264 Bit Rate", "-1"},
          Case{"H264 Key Frame Interval", ""}, Case{"Mpeg4 Bit Rate", "999999999999"},
          Case{"Mpeg4 Key Frame Interval", "601"}}) {
        MemorySettingsStore bad;
        SaveSettings(bad, s, "0");
        bad.writeText(c.name, c.text);
        CodecSettings wanted = s.Codec;
        const std::string name = c.name;
        if (name == "Mjpeg Quality") {
            wanted.MjpegQuality = defaults.MjpegQuality;
        } else if (name == "H264 Bit Rate") {
            wanted.H264BitRate = defaults.H264BitRate;
        } else if (name == "H264 Key Frame Interval") {
            wanted.H264KeyFrameInterval = defaults.H264KeyFrameInterval;
        } else if (name == "Mpeg4 Bit Rate") {
            wanted.Mpeg4BitRate = defaults.Mpeg4BitRate;
        } else {
            wanted.Mpeg4KeyFrameInterval = defaults.Mpeg4KeyFrameInterval;
        }
        EXPECT_EQ(LoadSettings(bad).Codec, wanted) << c.name << " = \"" << c.text << '"';
    }
}

TEST(VideoSize, AnyNumberOfDigitsOnEachSide) {
    EXPECT_EQ(parseVideoSize("640x480"), (VideoSizeValue{640, 480}));
    EXPECT_EQ(parseVideoSize("1280x720"), (VideoSizeValue{1280, 720}));
    EXPECT_EQ(parseVideoSize("1920X1080"), (VideoSizeValue{1920, 1080}));
    EXPECT_FALSE(parseVideoSize("640x"));
    EXPECT_FALSE(parseVideoSize("x480"));
    EXPECT_FALSE(parseVideoSize("0x480"));
    EXPECT_FALSE(parseVideoSize("640*480"));
    EXPECT_FALSE(parseVideoSize("-640x480"));
    EXPECT_FALSE(parseVideoSize("640x480p"));
}

} // namespace
} // namespace ravelcue
