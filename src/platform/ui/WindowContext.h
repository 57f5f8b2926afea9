#pragma once

namespace ravelcue {
class ModeMachine;
class SettingsStore;
class ToneBus;
struct AppSettings;
struct AppState;
struct PaneGeometry;
namespace media {
struct MediaInstances;
}
} // namespace ravelcue

namespace ravelcue::ui {

class CancelKey;
class Clock;
class Prompts;
class StatusPanels;
class StatusPopup;

// What the panes of the main window share, handed to each by its constructor. The main window
// owns all of it and outlives every pane.
struct WindowContext {
    AppState& state;
    AppSettings& settings;
    SettingsStore& store;
    ModeMachine& mode;
    PaneGeometry& geometry;
    media::MediaInstances& media;
    StatusPanels& status;
    Prompts& prompts;
    StatusPopup& popup;
    const Clock& clock;
    ToneBus& tones;
    CancelKey& cancelKey;
};

} // namespace ravelcue::ui
