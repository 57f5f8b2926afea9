#pragma once

#include <functional>
#include <string_view>

#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;

namespace ravelcue {
struct AppState;
}
namespace ravelcue::ui {
class Desktop;
class HelpWindow;
class Prompts;
class StatusPopup;
} // namespace ravelcue::ui

namespace ravelcue::utilities {

class UpdateCheck;

// What the utilities need of the program around them.
struct UtilityServices {
    QWidget& owner; // frmMain: owns the dialogs
    const AppState& state;
    std::function<void(std::string_view)> State;
    ui::Prompts& prompts;
    ui::StatusPopup& popup;
    ui::Desktop& desktop;
    ui::HelpWindow& help;
    QString programFolder;
    QString downloadUrl;
};

// The housekeeping commands of the main window: Delete Files, the update check, help, the web
// site and About. UI thread only.
class UtilityCommands final : public QObject {
    Q_OBJECT
public:
    explicit UtilityCommands(UtilityServices services);

    // Opens Delete Files modally over the owner; the caller has switched to "DeleteFiles".
    void openDeleteFiles();
    // The update check, with its window or silently; the window stays loaded between checks
    // until its OK closes it.
    void CheckUpdate(bool interactive);
    void showContents();
    void openWebSite();
    // About, modal over the owner.
    void showAbout();

    // The update window while it is loaded, else null.
    UpdateCheck* updateCheck() const;

private:
    UtilityServices services_;
    QPointer<UpdateCheck> updateCheck_;
};

} // namespace ravelcue::utilities
