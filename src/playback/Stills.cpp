#include "Stills.h"

#include "core/AppSettings.h"
#include "core/FileSetNames.h"
#include "platform/media/MediaInstances.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/WaitCursor.h"
#include "platform/ui/WindowContext.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

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
                                 stamp, state.AppDataDir);
}

QString Stills::save(int player, const std::string& name) {
    const QString path = QString::fromStdString(name);
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder)) {
        return QStringLiteral("%1: the folder %2 can't be created").arg(path, folder);
    }
    const media::MediaError error = context_.media.play(player).PlayerSaveFrame(path, kJpegQuality);
    return error.ok() ? QString() : QStringLiteral("%1: %2").arg(path, error.text);
}

void Stills::mnuCaptureImage_Click() {
    const int player = context_.state.SelectedPlayer;
    const std::string name = stillName(player, stamp());
    QString failure;
    if (!name.empty()) {
        ui::WaitCursor busy;
        failure = save(player, name);
    }
    if (!failure.isEmpty()) {
        context_.prompts.message(QStringLiteral("Save Image failed\n") + failure,
                                 ui::MessageIcon::Exclamation);
        return;
    }
    context_.prompts.message(QStringLiteral("Save Image complete"), ui::MessageIcon::Information);
}

void Stills::mnuCaptureSet_Click() {
    // One stamp for all: it is what binds the stills into a Set.
    const std::string common = stamp();
    QStringList failures;
    {
        ui::WaitCursor busy;
        for (int i = 0; i < kCameraCount; ++i) {
            if (!context_.state.PlayerEnable[static_cast<size_t>(i)]) {
                continue;
            }
            const std::string name = stillName(i, common);
            if (name.empty()) {
                continue;
            }
            if (const QString failure = save(i, name); !failure.isEmpty()) {
                failures << failure;
            }
        }
    }
    if (!failures.isEmpty()) {
        context_.prompts.message(QStringLiteral("Save Image Set failed\n") + failures.join('\n'),
                                 ui::MessageIcon::Exclamation);
        return;
    }
    context_.prompts.message(QStringLiteral("Save Image Set complete"),
                             ui::MessageIcon::Information);
}

} // namespace ravelcue::playback
