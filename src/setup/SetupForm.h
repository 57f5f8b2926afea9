#pragma once

#include "core/AppSettings.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ravelcue::setup {

// One camera row of the dialog.
struct CameraRow {
    bool enabled = false;   // chkCamEnable ticked
    bool canEnable = false; // chkCamEnable usable: a device stands in this row
    int selection = -1;     // entry of cboVideoSource, -1 for none
    std::string nickname;   // txtNickname
};

// What the dialog's controls hold. Lists that a stopped load never reached stay empty and are
// marked unfilled, so that OK keeps what the store holds for them.
struct SetupForm {
    std::int32_t markerColor = 65280;
    int widthEntry = 1; // entry of cboWidth: "1" is entry 0
    bool metricUnits = false;
    bool subtractCueball = true;
    bool defaultDistance = true;
    std::string distanceText = "48";
    bool checkForUpdate = false;
    std::array<CameraRow, kCameraCount> cameras{};
    bool aviCapture = true; // optEnableAVI, else optEnableWMV

    std::vector<std::string> codecEntries; // cboAviCodecs: "None" and the compressors
    int codecSelection = -1;
    bool codecsFilled = false;
    CodecSettings codec;                     // the compressors' own settings
    std::vector<std::string> profileEntries; // cboWmvProfiles
    int profileSelection = -1;
    bool profilesFilled = false;
    std::vector<std::string> videoEntries; // every cboVideoSource offers these
    bool videoFilled = false;
    std::vector<std::string> audioEntries; // cboAudioSource
    int audioSelection = -1;
    bool audioFilled = false;
};

// The devices and encoders the machine offers, in list order.
struct SetupDevices {
    std::vector<std::string> video;
    std::vector<std::string> audio;
    std::vector<std::string> codecs; // without "None"
    std::vector<std::string> profiles;
};

enum class SetupIcon { Plain, Exclamation, Critical };

struct SetupMessage {
    std::string text;
    SetupIcon icon = SetupIcon::Plain;
    bool operator==(const SetupMessage&) const = default;
};

// The dialog as its load leaves it, with the messages the load shows in their order. A missing
// codec or profile stops the load: stopped is then true and the later lists stay unfilled.
struct SetupLoad {
    SetupForm form;
    std::vector<SetupMessage> messages;
    bool stopped = false;
};

// What "Codec Settings" offers for a cboAviCodecs entry.
enum class CodecSettingsKind { NoCodec, Quality, BitRateAndKeyFrames, Nothing };
CodecSettingsKind codecSettingsKind(std::string_view entry);

// At most this many devices are offered in each camera row.
inline constexpr int kMaxVideoEntries = 4;

// The entry of a device in cboVideoSource: its name and its position, "Demo Camera 2(1)", so that
// two devices of one name stay apart.
std::string videoSourceEntry(std::string_view name, int position);

// Fills the form from the settings in the dialog's loading order. updateCheck is the stored
// "Startup CheckForUpdate Enable", if any.
SetupLoad loadSetupForm(const AppSettings& settings, const std::optional<std::string>& updateCheck,
                        const SetupDevices& devices);

// A nickname typed into txtNickname without "(", ")" and "-", which would break the names of the
// files of a Set; refused says whether any was there.
struct CleanNickname {
    std::string text;
    bool refused = false;
};
CleanNickname cleanNickname(std::string_view typed);
inline constexpr const char* kNicknameRefusal = "Characters \"( ) -\" not allowed in Nickname";

// What OK stores: the settings, and the update choice as "0" or "1".
struct AcceptedSetup {
    AppSettings settings;
    std::string updateCheck;
};

// OK's reading of the form over the settings in force (which already hold the marker width and
// the sizes and rates read back from the devices). Nothing when the form cannot be stored; error
// then says why, naming the field.
struct SetupAcceptance {
    std::optional<AcceptedSetup> accepted;
    std::string error;
};
SetupAcceptance acceptSetupForm(const SetupForm& form, const AppSettings& inForce);

// What OK must reconnect on the main window: every enabled camera (the dialog took them all
// away), and the microphone when its choice changed.
enum class AudioChange { Keep, Reconnect, Disconnect };
struct Reconnection {
    std::array<bool, kCameraCount> cameras{};
    AudioChange audio = AudioChange::Keep;
};
Reconnection reconnectionAfterSetup(const AppSettings& before, const AppSettings& after);

// On a first start (no camera chosen at all) with a real camera on the machine, camera 1 takes
// the first real camera and is enabled. Demo cameras are never chosen this way. Nothing when
// there is nothing to choose.
std::optional<AppSettings> chooseFirstCamera(const AppSettings& settings,
                                             const std::vector<std::string>& videoDevices);

} // namespace ravelcue::setup
