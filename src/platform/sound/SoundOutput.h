#pragma once

#include "core/ToneBus.h"

#include <QString>
#include <QThread>

namespace ravelcue::sound {

class SoundWorker;

// The program's own sounds on the default sound output: the beeps of capture, calibration and
// training, and the spoken commands. Call from the UI thread; the sound itself is fed to the
// device from a thread of this object's own.
class SoundOutput {
public:
    // Every tone played is published on tones, so that the demo microphone hears it.
    explicit SoundOutput(ToneBus& tones);
    ~SoundOutput();
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    // True when the machine has a sound output.
    bool SoundDeviceExists() const;

    // Sounds a tone of frequency Hz and returns when its milliseconds are over, handling no
    // events meanwhile. Without a sound output it is silent but takes as long, and is still
    // published.
    void PlayBeep(int frequency, int milliseconds);

    // Starts a WAV file and returns at once; a new one cuts off the one before. False when the
    // file can't be read or there is no sound output.
    bool PlayWaveFile(const QString& path);

private:
    ToneBus& tones_;
    QThread thread_;
    SoundWorker* worker_; // lives on thread_, deleted as it ends
};

} // namespace ravelcue::sound
