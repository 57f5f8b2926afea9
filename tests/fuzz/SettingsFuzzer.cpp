// Every setting read at start-up from a store that holds anything at all: missing values, long
// ones, numbers out of range, text where numbers belong. Then what the program does with them:
// the Setup dialog's load and OK, the capture size and rate, and the save on Exit.
#include "FuzzInput.h"
#include "core/AppSettings.h"
#include "core/SettingsStore.h"
#include "core/TextNumbers.h"
#include "core/VideoSize.h"
#include "setup/SetupForm.h"

#include <fuzzer/FuzzedDataProvider.h>

using namespace ravelcue;
using ravelcue::fuzz::check;

namespace {

// Answers each read with the next value of the input, in the order the values are asked for;
// a value may be missing, and may be longer than the store lets through.
class FuzzedStore final : public SettingsStore {
public:
    explicit FuzzedStore(FuzzedDataProvider& input)
        : input_(input) {}

    std::optional<std::string> readText(std::string_view) const override {
        if (input_.ConsumeBool()) {
            return std::nullopt;
        }
        return input_.ConsumeRandomLengthString(kMaxSettingBytes + 8);
    }
    bool writeText(std::string_view, std::string_view) override { return false; }

private:
    FuzzedDataProvider& input_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const FuzzedStore store(input);
    const AppSettings settings = LoadSettings(store);
    const std::optional<std::string> updateCheck = store.readText(kCheckForUpdateSetting);

    for (int i = 0; i < kCameraCount; ++i) {
        const auto k = static_cast<size_t>(i);
        leadingNumber(settings.FrameRate[k]);
        if (const std::optional<VideoSizeValue> captured = parseVideoSize(settings.VideoSize[k])) {
            check(captured->width > 0 && captured->height > 0, "a capture size has two sides");
        }
    }

    // Setup: the dialog loads what was read, and OK takes it or says why not.
    const setup::SetupDevices devices{{"Demo Camera 1", "Demo Camera 2"},
                                      {"Demo Microphone"},
                                      {"MJPEG", "H.264"},
                                      {kDefaultWmvProfile}};
    const setup::SetupLoad load = setup::loadSetupForm(settings, updateCheck, devices);
    const setup::SetupAcceptance accepted = setup::acceptSetupForm(load.form, settings);
    check(accepted.accepted.has_value() != !accepted.error.empty(),
          "OK either stores the form or says why not");

    // Exit saves what was read; from then on a save and a load change nothing.
    MemorySettingsStore first;
    SaveSettings(first, settings, updateCheck.value_or(""));
    MemorySettingsStore second;
    SaveSettings(second, LoadSettings(first), updateCheck.value_or(""));
    check(first.values() == second.values(), "saved settings read back as they were saved");
    return 0;
}
