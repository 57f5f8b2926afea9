// The housekeeping around the main features: Delete Files, the update check, help and About.

#include "MainWindow.h"
#include "breakspeed/BreakSpeedPane.h"
#include "platform/ui/HelpWindow.h"
#include "utilities/UtilityCommands.h"

#include <QAction>

namespace ravelcue::app {

void MainWindow::wireUtilities() {
    help_ = std::make_unique<ui::HelpWindow>();
    utilities_ = new utilities::UtilityCommands(
        {*this, state_, [this](std::string_view word) { State(word); }, services_.prompts,
         services_.popup, services_.desktop, *help_, services_.paths.programFolder,
         services_.downloadUrl});
    connect(menus_.mnuContents, &QAction::triggered, utilities_,
            &utilities::UtilityCommands::showContents);
    connect(menus_.mnuWebSite, &QAction::triggered, utilities_,
            &utilities::UtilityCommands::openWebSite);
    connect(menus_.mnuUpdateCheck, &QAction::triggered, utilities_,
            [this] { utilities_->CheckUpdate(true); });
    connect(menus_.mnuAbout, &QAction::triggered, utilities_,
            &utilities::UtilityCommands::showAbout);
    connect(breakSpeedPane_, &breakspeed::BreakSpeedPane::helpRequested, utilities_,
            [this](int topic) { help_->showTopic(topic); });
}

void MainWindow::runSilentUpdateCheck() {
    // The read runs in the background and the check speaks only when a newer version exists.
    utilities_->CheckUpdate(false);
}

} // namespace ravelcue::app
