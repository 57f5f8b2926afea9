#pragma once

#include <QPointer>
#include <QString>

class QLabel;
class QTimer;
class QWidget;

namespace ravelcue::ui {

class Clock;

// The small "Status" window that long operations show while they run. The window is created on
// demand and unloads itself when its timer fires. UI thread only.
class StatusPopup {
public:
    explicit StatusPopup(const Clock& clock);
    ~StatusPopup();
    StatusPopup(const StatusPopup&) = delete;
    StatusPopup& operator=(const StatusPopup&) = delete;

    // seconds >= 1: closes itself after that many seconds; 0: stays until a later call closes it;
    // -1: closes at the next turn of the event loop. The text is set first, then the timer, then
    // the window shows without blocking the caller.
    void ShowPopup(const QString& text, int seconds);

    // The window while it is loaded, else null.
    QWidget* window() const { return window_; }

private:
    void load();
    void unload();

    const Clock& clock_;
    QPointer<QWidget> window_;
    QLabel* lblText_ = nullptr;
    QTimer* tmrDelay_ = nullptr;
};

} // namespace ravelcue::ui
