#include "SetupForm.h"

#include "core/TextNumbers.h"

#include <algorithm>

namespace ravelcue::setup {

namespace {

constexpr int kWidthEntries = 10;

int entryOf(const std::vector<std::string>& entries, std::string_view text) {
    const auto found = std::find(entries.begin(), entries.end(), text);
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

int inRange(int index, size_t count) {
    return index >= 0 && static_cast<size_t>(index) < count ? index : -1;
}

std::string selectedText(const std::vector<std::string>& entries, int selection) {
    return inRange(selection, entries.size()) >= 0 ? entries[static_cast<size_t>(selection)]
                                                   : std::string();
}

void fillCameraRows(SetupLoad& load, const AppSettings& settings, const SetupDevices& devices) {
    SetupForm& form = load.form;
    form.videoFilled = true;
    if (devices.video.empty()) {
        load.messages.push_back({"No video hardware found!", SetupIcon::Plain});
        return;
    }
    const int offered = std::min(kMaxVideoEntries, static_cast<int>(devices.video.size()));
    for (int j = 0; j < offered; ++j) {
        form.videoEntries.push_back(videoSourceEntry(devices.video[static_cast<size_t>(j)], j));
    }
    for (int i = 0; i < offered; ++i) {
        const auto k = static_cast<size_t>(i);
        CameraRow& row = form.cameras[k];
        row.selection = inRange(settings.VideoDeviceIndex[k], form.videoEntries.size());
        row.canEnable = true;
        row.enabled = settings.CamEnable[k] == 1;
    }
}

void fillAudio(SetupLoad& load, const AppSettings& settings, const SetupDevices& devices) {
    SetupForm& form = load.form;
    form.audioFilled = true;
    if (devices.audio.empty()) {
        load.messages.push_back({"No audio hardware found!", SetupIcon::Plain});
        return;
    }
    form.audioEntries = devices.audio;
    form.audioSelection = settings.AudioSource.empty()
                              ? 0
                              : inRange(settings.AudioDeviceIndex, form.audioEntries.size());
}

} // namespace

std::string videoSourceEntry(std::string_view name, int position) {
    return std::string(name) + "(" + std::to_string(position) + ")";
}

SetupLoad loadSetupForm(const AppSettings& settings, const std::optional<std::string>& updateCheck,
                        const SetupDevices& devices) {
    SetupLoad load;
    SetupForm& form = load.form;
    form.markerColor = settings.MarkerColor;
    form.codec = settings.Codec;
    form.metricUnits = settings.Units == 1;
    form.subtractCueball = settings.Cueball == 1;
    form.defaultDistance = settings.EnableDistance == 1;
    form.distanceText = floatText(settings.Distance);
    form.checkForUpdate = updateCheck.value_or("0") == "1";
    for (size_t i = 0; i < form.cameras.size(); ++i) {
        form.cameras[i].nickname = settings.CamNickname[i];
    }
    form.widthEntry = settings.MarkerWidth >= 1 && settings.MarkerWidth <= kWidthEntries
                          ? settings.MarkerWidth - 1
                          : -1;
    form.aviCapture = settings.CaptureType != "WMV";

    form.codecEntries.push_back("None");
    form.codecEntries.insert(form.codecEntries.end(), devices.codecs.begin(), devices.codecs.end());
    form.codecsFilled = true;
    form.codecSelection = entryOf(form.codecEntries, settings.AviCodec);
    if (form.codecSelection < 0) {
        load.messages.push_back({"The " + settings.AviCodec + " codec is missing from your system.",
                                 SetupIcon::Critical});
        load.stopped = true;
        return load;
    }

    form.profileEntries = devices.profiles;
    form.profilesFilled = true;
    form.profileSelection = entryOf(form.profileEntries, settings.WmvProfile);
    if (form.profileSelection < 0) {
        load.messages.push_back(
            {"The " + settings.WmvProfile + " profile is missing from your system.",
             SetupIcon::Critical});
        load.stopped = true;
        return load;
    }

    fillCameraRows(load, settings, devices);
    fillAudio(load, settings, devices);
    return load;
}

CleanNickname cleanNickname(std::string_view typed) {
    CleanNickname clean;
    for (const char c : typed) {
        if (c == '(' || c == ')' || c == '-') {
            clean.refused = true;
        } else {
            clean.text.push_back(c);
        }
    }
    return clean;
}

CodecSettingsKind codecSettingsKind(std::string_view entry) {
    if (entry == "None") {
        return CodecSettingsKind::NoCodec;
    }
    if (entry == "MJPEG") {
        return CodecSettingsKind::Quality;
    }
    if (entry == "H.264" || entry == "MPEG-4 Visual") {
        return CodecSettingsKind::BitRateAndKeyFrames;
    }
    return CodecSettingsKind::Nothing;
}

SetupAcceptance acceptSetupForm(const SetupForm& form, const AppSettings& inForce) {
    const std::optional<double> distance = parseNumber(form.distanceText);
    if (!distance) {
        return {std::nullopt, "The Distance field must hold a number."};
    }
    AcceptedSetup accepted{inForce, form.checkForUpdate ? "1" : "0"};
    AppSettings& s = accepted.settings;
    s.Units = form.metricUnits ? 1 : 0;
    s.Cueball = form.subtractCueball ? 1 : 0;
    s.EnableDistance = form.defaultDistance ? 1 : 0;
    s.Distance = static_cast<float>(*distance);
    s.MarkerColor = form.markerColor;
    if (form.widthEntry >= 0) {
        s.MarkerWidth = form.widthEntry + 1;
    }
    s.Codec = form.codec;
    // A list the load never filled, or one left without a choice, keeps what is stored.
    if (const std::string codec = selectedText(form.codecEntries, form.codecSelection);
        !codec.empty()) {
        s.AviCodec = codec;
    }
    if (const std::string profile = selectedText(form.profileEntries, form.profileSelection);
        !profile.empty()) {
        s.WmvProfile = profile;
    }
    for (size_t i = 0; i < form.cameras.size(); ++i) {
        const CameraRow& row = form.cameras[i];
        if (form.videoFilled) {
            const int selection = inRange(row.selection, form.videoEntries.size());
            s.VideoSource[i] = selectedText(form.videoEntries, selection);
            s.VideoDeviceIndex[i] = selection;
            s.CamEnable[i] = row.enabled ? 1 : 0;
        }
        s.CamNickname[i] = cleanNickname(row.nickname).text;
    }
    s.CaptureType = form.aviCapture ? "AVI" : "WMV";
    if (form.audioFilled) {
        const int selection = inRange(form.audioSelection, form.audioEntries.size());
        s.AudioSource = selectedText(form.audioEntries, selection);
        s.AudioDeviceIndex = std::max(selection, 0);
    }
    return {std::move(accepted), {}};
}

Reconnection reconnectionAfterSetup(const AppSettings& before, const AppSettings& after) {
    Reconnection plan;
    for (size_t i = 0; i < plan.cameras.size(); ++i) {
        plan.cameras[i] = after.CamEnable[i] == 1;
    }
    if (after.AudioSource.empty()) {
        plan.audio = before.AudioSource.empty() ? AudioChange::Keep : AudioChange::Disconnect;
    } else if (after.AudioSource != before.AudioSource ||
               after.AudioDeviceIndex != before.AudioDeviceIndex) {
        plan.audio = AudioChange::Reconnect;
    }
    return plan;
}

std::optional<AppSettings> chooseFirstCamera(const AppSettings& settings,
                                             const std::vector<std::string>& videoDevices) {
    const bool noneChosen = std::all_of(settings.VideoSource.begin(), settings.VideoSource.end(),
                                        [](const std::string& s) { return s.empty(); });
    if (!noneChosen) {
        return std::nullopt;
    }
    for (size_t j = 0; j < videoDevices.size(); ++j) {
        if (videoDevices[j].rfind("Demo Camera", 0) != 0) {
            AppSettings chosen = settings;
            chosen.VideoSource[0] = videoSourceEntry(videoDevices[j], static_cast<int>(j));
            chosen.VideoDeviceIndex[0] = static_cast<int>(j);
            chosen.CamEnable[0] = 1;
            return chosen;
        }
    }
    return std::nullopt;
}

} // namespace ravelcue::setup
