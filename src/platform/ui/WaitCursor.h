#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace ravelcue::ui {

// Shows the wait cursor over the whole program for as long as it lives; for work that holds the
// UI thread. UI thread only.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace ravelcue::ui
