#pragma once

#include "support/TempFolder.h"

#include <functional>
#include <memory>
#include <sys/types.h>
#include <vector>

#include <QtGlobal>

namespace ravelcue::test {

// A PulseAudio server of the test's own with one null output, so that sounds can be played on
// a machine without a sound card and heard again from the output's monitor. It must be started
// before anything in the process asks Qt for sound devices. UI thread only.
class PrivateSoundServer {
public:
    PrivateSoundServer();
    ~PrivateSoundServer();
    PrivateSoundServer(const PrivateSoundServer&) = delete;
    PrivateSoundServer& operator=(const PrivateSoundServer&) = delete;

    // False when PulseAudio isn't installed or didn't come up.
    bool running() const { return running_; }

    // Mono 44,100 Hz samples of what the output sounded for `seconds`; play runs once the
    // recording has begun.
    std::vector<qint16> record(double seconds, const std::function<void()>& play) const;

    // Points the process at a server that isn't there, so that it has no sound output whatever
    // the machine has. Also before the first question about devices.
    static void silenceProcess();

private:
    std::unique_ptr<TempFolder> folder_;
    pid_t server_ = 0;
    bool running_ = false;
};

} // namespace ravelcue::test
