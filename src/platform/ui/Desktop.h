#pragma once

#include <QUrl>

namespace ravelcue::ui {

// The user's own programs: the browser for web pages and downloads, the mail program for mailto:
// links, the file manager for folders. Dialogs go through here so that tests can see what would
// have opened. UI thread only.
class Desktop {
public:
    virtual ~Desktop() = default;
    // Opens the address with the program the desktop chooses; false when none would take it.
    virtual bool openUrl(const QUrl& url) = 0;
};

// The desktop itself, through QDesktopServices.
class SystemDesktop final : public Desktop {
public:
    bool openUrl(const QUrl& url) override;
};

} // namespace ravelcue::ui
