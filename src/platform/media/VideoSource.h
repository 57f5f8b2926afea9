#pragma once

#include "CaptureClock.h"

#include <stop_token>

#include <QImage>
#include <QSize>
#include <QString>

namespace ravelcue::media {

// One picture from a camera, stamped with the capture clock at the moment it was taken.
struct SourceFrame {
    QImage image; // RGB32, shared read-only from here on
    CaptureClock::Clock::time_point captured;
};

// A camera opened at one size and rate: a real device or a demo scene. Read from one thread.
class VideoSource {
public:
    enum class Read { Frame, Stopped, Lost };

    virtual ~VideoSource() = default;

    virtual QSize size() const = 0;
    virtual double frameRate() const = 0;
    // Waits for the next picture. Stopped when stop was requested, Lost (with a reason a user can
    // read) when the device has gone.
    virtual Read read(SourceFrame& frame, std::stop_token stop, QString& reason) = 0;
};

} // namespace ravelcue::media
