#include "Clock.h"

#include <algorithm>
#include <cmath>

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

namespace ravelcue::ui {

Clock::Clock(double speed)
    : speed_(speed > 0 ? speed : 1.0) {}

int Clock::scaled(int milliseconds) const {
    return std::max(1, static_cast<int>(std::lround(milliseconds / speed_)));
}

void Clock::setInterval(QTimer& timer, int milliseconds) const {
    timer.setInterval(scaled(milliseconds));
}

void Clock::sleepMs(int milliseconds) const {
    QThread::msleep(static_cast<unsigned long>(scaled(milliseconds)));
}

void Clock::DelaySeconds(int seconds) const {
    // Each turn serves events for its whole 100 ms rather than sleeping through it, so pictures
    // keep moving and clicks are answered while the caller waits.
    const int turns = seconds * 10;
    for (int turn = 0; turn < turns; ++turn) {
        QEventLoop loop;
        QTimer::singleShot(scaled(100), &loop, &QEventLoop::quit);
        loop.exec();
    }
}

} // namespace ravelcue::ui
