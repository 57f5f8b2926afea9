#include "Stills.h"

#include "core/AppSettings.h"
#include "core/FileSetNames.h"
#include "platform/media/MediaInstances.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/WindowContext.h"

namespace ravelcue::playback {

Stills::Stills(ui::WindowContext& context, TimeOfDay timeOfDay, QObject* parent)
    : QObject(parent)
    , context_(context)
    , timeOfDay_(std::move(timeOfDay)) {}

std::string Stills::stamp() const {
    const QTime now = timeOfDay_();
    return names::stillStamp(now.hour(), now.minute(), now.second());
}

std::string Stills::stillName(int player, const std::string& stamp) const {
    const AppState& state = context_.state;
    const std::string& source =
        state.LoadedFileType == "img" ? state.CurrentImageFile : state.CurrentVideoFile;
    return names::stillImageName(source, state.LoadedFileType,
                                 context_.settings.CamNickname.at(static_cast<size_t>(player)),
                                 stamp);
}

void Stills::mnuCaptureImage_Click() {
    const int player = context_.state.SelectedPlayer;
    const std::string name = stillName(player, stamp());
    if (!name.empty()) {
        context_.media.play(player).PlayerSaveFrame(QString::fromStdString(name), kJpegQuality);
    }
    context_.prompts.message(QStringLiteral("Save Image complete"), ui::MessageIcon::Information);
}

void Stills::mnuCaptureSet_Click() {
    // One stamp for all: it is what binds the stills into a Set.
    const std::string common = stamp();
    for (int i = 0; i < kCameraCount; ++i) {
        if (!context_.state.PlayerEnable[static_cast<size_t>(i)]) {
            continue;
        }
        const std::string name = stillName(i, common);
        if (!name.empty()) {
            context_.media.play(i).PlayerSaveFrame(QString::fromStdString(name), kJpegQuality);
        }
    }
    context_.prompts.message(QStringLiteral("Save Image Set complete"),
                             ui::MessageIcon::Information);
}

} // namespace ravelcue::playback
