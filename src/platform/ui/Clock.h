#pragma once

class QTimer;

namespace ravelcue::ui {

// The time base of timers and waits. The program runs at speed 1; tests speed it up so that a
// minute of countdown passes in a second. UI thread only.
class Clock {
public:
    explicit Clock(double speed = 1.0);

    double speed() const { return speed_; }
    // A program interval in milliseconds as it runs on this clock (never below 1).
    int scaled(int milliseconds) const;
    // Sets a timer's interval on this clock.
    void setInterval(QTimer& timer, int milliseconds) const;
    // Waits seconds x 10 turns of 100 ms while window events run. Fewer than one turn returns at
    // once.
    void DelaySeconds(int seconds) const;
    // Sleeps on this clock without serving events.
    void sleepMs(int milliseconds) const;

private:
    double speed_;
};

} // namespace ravelcue::ui
