#pragma once

#include "support/TempFolder.h"

#include <functional>
#include <memory>
#include <sys/types.h>
#include <vector>

#include <QString>
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

    // Adds a null output named `sink` whose description is `description` (its monitor is
    // "Monitor of <description>", an input); the module's number, or -1.
    int addNullSink(const QString& sink, const QString& description) const;
    // An input that hears what the output plays, sample for sample: its monitor as a source of
    // its own, which sound libraries list beside microphones (monitors they may leave out). The
    // module's number, or -1.
    int addInputOf(const QString& sink, const QString& description) const;
    // Takes a module out again: the output and its monitor vanish, as an unplugged card does.
    bool removeModule(int module) const;
    // Plays a WAV file into the output, keeping the event loop running until it has been played.
    bool playInto(const QString& sink, const QString& wavFile) const;

    // Points the process at a server that isn't there, so that it has no sound output whatever
    // the machine has. Also before the first question about devices.
    static void silenceProcess();

private:
    std::unique_ptr<TempFolder> folder_;
    pid_t server_ = 0;
    bool running_ = false;
};

} // namespace ravelcue::test
