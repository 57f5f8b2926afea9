#include "UtilityCommands.h"

#include "AboutDialog.h"
#include "FileDeleteDialog.h"
#include "UpdateCheck.h"
#include "core/AppState.h"
#include "core/Version.h"
#include "platform/ui/Desktop.h"
#include "platform/ui/HelpWindow.h"

#include <QUrl>

namespace ravelcue::utilities {

namespace {
constexpr int kContentsTopic = 10;
}

UtilityCommands::UtilityCommands(UtilityServices services)
    : QObject(&services.owner)
    , services_(std::move(services)) {}

void UtilityCommands::openDeleteFiles() {
    // Built anew at every opening, so the lists show the folders as they are.
    auto* dialog =
        new FileDeleteDialog(QString::fromStdString(services_.state.AppDataDir), services_.State,
                             services_.prompts, services_.help, &services_.owner);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void UtilityCommands::CheckUpdate(bool interactive) {
    if (!updateCheck_) {
        updateCheck_ = new UpdateCheck({services_.downloadUrl, QString::fromLatin1(kVersionText)},
                                       services_.prompts, services_.popup, services_.help,
                                       services_.desktop, &services_.owner);
        updateCheck_->setAttribute(Qt::WA_DeleteOnClose);
    }
    updateCheck_->CheckUpdate(interactive);
}

UpdateCheck* UtilityCommands::updateCheck() const {
    return updateCheck_;
}

void UtilityCommands::showContents() {
    services_.help.showTopic(kContentsTopic);
}

void UtilityCommands::openWebSite() {
    services_.desktop.openUrl(QUrl(QString::fromLatin1(kWebUrl)));
}

void UtilityCommands::showAbout() {
    auto* about = new AboutDialog({QStringLiteral("Ravelcue"), QString::fromLatin1(kVersionText),
                                   services_.programFolder,
                                   QString::fromStdString(services_.state.AppDataDir),
                                   QString::fromLatin1(kWebUrl), QString::fromLatin1(kContactMail)},
                                  services_.desktop, &services_.owner);
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->open();
}

} // namespace ravelcue::utilities
