#include "setup/SetupForm.h"

#include "core/SettingsStore.h"

#include <gtest/gtest.h>

namespace ravelcue::setup {
namespace {

SetupDevices twoCameras() {
    SetupDevices d;
    d.video = {"USB Camera", "USB Camera"};
    d.audio = {"Built-in Audio", "Demo Microphone"};
    d.codecs = {"Motion JPEG", "H.264"};
    d.profiles = {kDefaultWmvProfile, "Video for LAN (768 Kbps)"};
    return d;
}

TEST(SetupLoad, FillsEveryFieldFromTheSettings) {
    AppSettings s;
    s.Units = 1;
    s.Cueball = 0;
    s.EnableDistance = 0;
    s.Distance = 90.25F;
    s.MarkerColor = 255;
    s.MarkerWidth = 7;
    s.AviCodec = "H.264";
    s.CaptureType = "WMV";
    s.VideoDeviceIndex = {1, 0, 2, 3};
    s.CamEnable = {1, 0, 1, 1};
    s.CamNickname = {"Top", "Side", "End", "Far"};
    s.AudioSource = "Demo Microphone";
    s.AudioDeviceIndex = 1;

    const SetupLoad load = loadSetupForm(s, std::string("1"), twoCameras());
    EXPECT_FALSE(load.stopped);
    EXPECT_TRUE(load.messages.empty());
    const SetupForm& f = load.form;
    EXPECT_EQ(f.markerColor, 255);
    EXPECT_EQ(f.widthEntry, 6);
    EXPECT_TRUE(f.metricUnits);
    EXPECT_FALSE(f.subtractCueball);
    EXPECT_FALSE(f.defaultDistance);
    EXPECT_EQ(f.distanceText, "90.25");
    EXPECT_TRUE(f.checkForUpdate);
    EXPECT_FALSE(f.aviCapture);
    EXPECT_EQ(f.codecEntries, (std::vector<std::string>{"None", "Motion JPEG", "H.264"}));
    EXPECT_EQ(f.codecSelection, 2);
    EXPECT_EQ(f.profileSelection, 0);
    // Two devices of one name stay apart by their position.
    EXPECT_EQ(f.videoEntries, (std::vector<std::string>{"USB Camera(0)", "USB Camera(1)"}));
    EXPECT_EQ(f.cameras[0].selection, 1);
    EXPECT_EQ(f.cameras[1].selection, 0);
    EXPECT_TRUE(f.cameras[0].enabled);
    EXPECT_FALSE(f.cameras[1].enabled);
    // Rows beyond the devices: no selection, and they cannot be enabled even when stored so.
    for (size_t i : {2U, 3U}) {
        EXPECT_EQ(f.cameras[i].selection, -1) << i;
        EXPECT_FALSE(f.cameras[i].canEnable) << i;
        EXPECT_FALSE(f.cameras[i].enabled) << i;
    }
    EXPECT_EQ(f.cameras[3].nickname, "Far");
    EXPECT_EQ(f.audioSelection, 1);
}

TEST(SetupLoad, OffersAtMostFourDevicesAndNoSelectionForAStoredIndexBeyondThem) {
    SetupDevices d = twoCameras();
    d.video = {"A", "B", "C", "D", "Demo Camera 1"};
    AppSettings s;
    s.VideoDeviceIndex = {4, 1, 2, 3};
    const SetupForm f = loadSetupForm(s, std::nullopt, d).form;
    EXPECT_EQ(f.videoEntries.size(), 4U);
    EXPECT_EQ(f.videoEntries.back(), "D(3)");
    EXPECT_EQ(f.cameras[0].selection, -1);
    EXPECT_EQ(f.cameras[1].selection, 1);
    EXPECT_FALSE(f.checkForUpdate) << "nothing stored reads as not checking";
}

TEST(SetupLoad, AudioEntryZeroWhenNoSourceIsStored) {
    AppSettings s;
    s.AudioDeviceIndex = 1;
    EXPECT_EQ(loadSetupForm(s, std::nullopt, twoCameras()).form.audioSelection, 0);
}

TEST(SetupLoad, MissingHardwareAndMissingEncodersSayWhatTheyShould) {
    struct Case {
        const char* what;
        AppSettings settings;
        SetupDevices devices;
        std::vector<SetupMessage> messages;
        bool stopped;
    };
    AppSettings missingCodec;
    missingCodec.AviCodec = "Cinepak";
    AppSettings missingProfile;
    missingProfile.WmvProfile = "Video for dial-up";
    SetupDevices none = twoCameras();
    none.video.clear();
    none.audio.clear();
    const Case cases[] = {
        {"codec",
         missingCodec,
         twoCameras(),
         {{"The Cinepak codec is missing from your system.", SetupIcon::Critical}},
         true},
        {"profile",
         missingProfile,
         twoCameras(),
         {{"The Video for dial-up profile is missing from your system.", SetupIcon::Critical}},
         true},
        {"devices",
         AppSettings{},
         none,
         {{"No video hardware found!", SetupIcon::Plain},
          {"No audio hardware found!", SetupIcon::Plain}},
         false},
    };
    for (const Case& c : cases) {
        const SetupLoad load = loadSetupForm(c.settings, std::nullopt, c.devices);
        EXPECT_EQ(load.messages, c.messages) << c.what;
        EXPECT_EQ(load.stopped, c.stopped) << c.what;
        if (c.stopped) {
            EXPECT_FALSE(load.form.videoFilled) << c.what;
            EXPECT_FALSE(load.form.audioFilled) << c.what;
        }
    }
}

// Settings are the same when they are saved the same: every value, by its stored name.
auto saved(const AppSettings& settings) {
    MemorySettingsStore store;
    SaveSettings(store, settings, "1");
    return store.values();
}

AppSettings roundTrip(const AppSettings& s, const SetupDevices& d) {
    const SetupAcceptance a = acceptSetupForm(loadSetupForm(s, "0", d).form, s);
    EXPECT_TRUE(a.accepted) << a.error;
    return a.accepted ? a.accepted->settings : AppSettings{};
}

TEST(SetupAccept, AnUntouchedFormStoresWhatWasLoaded) {
    AppSettings s;
    s.Units = 1;
    s.Distance = 90.25F;
    s.MarkerColor = 16711680;
    s.MarkerWidth = 10;
    s.AviCodec = "Motion JPEG";
    s.CaptureType = "WMV";
    s.VideoSource = {"USB Camera(1)", "USB Camera(0)", "", ""};
    s.VideoDeviceIndex = {1, 0, -1, -1};
    s.CamEnable = {1, 1, 0, 0};
    s.AudioSource = "Demo Microphone";
    s.AudioDeviceIndex = 1;
    EXPECT_EQ(saved(roundTrip(s, twoCameras())), saved(s));
}

TEST(SetupAccept, ARowWithoutSelectionStoresAnEmptySourceAndMinusOne) {
    AppSettings s;
    s.VideoSource = {"USB Camera(0)", "Gone(7)", "", ""};
    s.VideoDeviceIndex = {0, 7, 2, 3};
    s.CamEnable = {1, 1, 1, 0};
    const AppSettings back = roundTrip(s, twoCameras());
    EXPECT_EQ(back.VideoSource, (std::array<std::string, 4>{"USB Camera(0)", "", "", ""}));
    EXPECT_EQ(back.VideoDeviceIndex, (std::array<int, 4>{0, -1, -1, -1}));
    EXPECT_EQ(back.CamEnable, (std::array<int, 4>{1, 1, 0, 0}));
}

TEST(SetupAccept, ALoadThatStoppedKeepsTheStoredDeviceChoices) {
    AppSettings s;
    s.AviCodec = "Cinepak";
    s.VideoSource = {"USB Camera(1)", "", "", ""};
    s.VideoDeviceIndex = {1, 1, 2, 3};
    s.CamEnable = {1, 0, 0, 0};
    s.AudioSource = "Built-in Audio";
    s.AudioDeviceIndex = 0;
    SetupForm f = loadSetupForm(s, std::nullopt, twoCameras()).form;
    f.cameras[2].nickname = "Side";
    const SetupAcceptance a = acceptSetupForm(f, s);
    ASSERT_TRUE(a.accepted);
    EXPECT_EQ(a.accepted->settings.AviCodec, "Cinepak");
    EXPECT_EQ(a.accepted->settings.VideoSource, s.VideoSource);
    EXPECT_EQ(a.accepted->settings.VideoDeviceIndex, s.VideoDeviceIndex);
    EXPECT_EQ(a.accepted->settings.CamEnable, s.CamEnable);
    EXPECT_EQ(a.accepted->settings.AudioSource, "Built-in Audio");
    EXPECT_EQ(a.accepted->settings.CamNickname[2], "Side");
}

TEST(SetupAccept, ReadsTheChangedControls) {
    SetupForm f = loadSetupForm(AppSettings{}, std::nullopt, twoCameras()).form;
    f.cameras[1].selection = 1;
    f.cameras[1].enabled = true;
    f.cameras[1].nickname = "Side (cam)";
    f.distanceText = " 7.5 ";
    f.subtractCueball = false;
    f.checkForUpdate = true;
    f.codecSelection = 1;
    f.audioSelection = 1;
    const SetupAcceptance a = acceptSetupForm(f, AppSettings{});
    ASSERT_TRUE(a.accepted);
    const AppSettings& s = a.accepted->settings;
    EXPECT_EQ(s.VideoSource[1], "USB Camera(1)");
    EXPECT_EQ(s.CamEnable[1], 1);
    EXPECT_EQ(s.CamNickname[1], "Side cam");
    EXPECT_EQ(s.Distance, 7.5F);
    EXPECT_EQ(s.Cueball, 0);
    EXPECT_EQ(s.AviCodec, "Motion JPEG");
    EXPECT_EQ(s.AudioSource, "Demo Microphone");
    EXPECT_EQ(s.AudioDeviceIndex, 1);
    EXPECT_EQ(a.accepted->updateCheck, "1");
}

TEST(SetupAccept, RefusesADistanceThatIsNotANumber) {
    for (const char* text : {"", "forty", "48in", "1,5"}) {
        SetupForm f = loadSetupForm(AppSettings{}, std::nullopt, twoCameras()).form;
        f.distanceText = text;
        const SetupAcceptance a = acceptSetupForm(f, AppSettings{});
        EXPECT_FALSE(a.accepted) << text;
        EXPECT_NE(a.error.find("Distance"), std::string::npos) << text;
    }
}

TEST(Nickname, LosesBracketsAndDashesAndKeepsTheRest) {
    struct Case {
        const char* typed;
        const char* kept;
        bool refused;
    };
    for (const Case& c : {Case{"Side (cam)", "Side cam", true}, Case{"a-b", "ab", true},
                          Case{"((-))", "", true}, Case{"Top cam 2", "Top cam 2", false}}) {
        const CleanNickname n = cleanNickname(c.typed);
        EXPECT_EQ(n.text, c.kept) << c.typed;
        EXPECT_EQ(n.refused, c.refused) << c.typed;
    }
}

TEST(Reconnection, EnabledCamerasAndAChangedMicrophone) {
    AppSettings before;
    before.AudioSource = "Built-in Audio";
    AppSettings after = before;
    after.CamEnable = {1, 0, 0, 1};
    Reconnection plan = reconnectionAfterSetup(before, after);
    EXPECT_EQ(plan.cameras, (std::array<bool, 4>{true, false, false, true}));
    EXPECT_EQ(plan.audio, AudioChange::Keep);

    after.AudioDeviceIndex = 1;
    EXPECT_EQ(reconnectionAfterSetup(before, after).audio, AudioChange::Reconnect);
    after.AudioDeviceIndex = 0;
    after.AudioSource = "Demo Microphone";
    EXPECT_EQ(reconnectionAfterSetup(before, after).audio, AudioChange::Reconnect);
    after.AudioSource.clear();
    EXPECT_EQ(reconnectionAfterSetup(before, after).audio, AudioChange::Disconnect);
    EXPECT_EQ(reconnectionAfterSetup(after, after).audio, AudioChange::Keep);
}

TEST(FirstCamera, TheFirstRealCameraOnAFirstStartOnly) {
    const std::vector<std::string> demoOnly = {"Demo Camera 1", "Demo Camera 2"};
    const std::vector<std::string> withReal = {"Demo Camera 1", "HD Webcam", "Other"};
    EXPECT_FALSE(chooseFirstCamera(AppSettings{}, demoOnly));

    const std::optional<AppSettings> chosen = chooseFirstCamera(AppSettings{}, withReal);
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->VideoSource[0], "HD Webcam(1)");
    EXPECT_EQ(chosen->VideoDeviceIndex[0], 1);
    EXPECT_EQ(chosen->CamEnable, (std::array<int, 4>{1, 0, 0, 0}));

    AppSettings chosenBefore;
    chosenBefore.VideoSource[2] = "Other(2)";
    EXPECT_FALSE(chooseFirstCamera(chosenBefore, withReal));
}

} // namespace
} // namespace ravelcue::setup
