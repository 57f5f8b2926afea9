#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace ravelcue::media {

// A running microphone: delivers 16-bit stereo frames at 44,100 a second, numbered from when it
// started, to one sink, in order and without gaps.
class MicrophoneInput {
public:
    // Interleaved left, right words; firstFrame numbers the first of them. Called on the
    // input's own thread (or the UI thread for inputs driven by its event loop).
    using Sink =
        std::function<void(std::int64_t firstFrame, const std::int16_t* samples, int frames)>;

    virtual ~MicrophoneInput() = default;

    // False when the device cannot be opened.
    virtual bool start(Sink sink) = 0;
    // Delivers nothing after it returns.
    virtual void stop() = 0;
    // The number of the frame being heard now: the first one a recording started now keeps.
    virtual std::int64_t frameNow() const = 0;
    // Delivers at once what has been heard up to now, so a recording stopped now is complete.
    virtual void catchUp() {}
    // A recording starts at this frame (the demo plays its breaks from there).
    virtual void recordingStarted(std::int64_t firstFrame) { (void)firstFrame; }
    virtual void recordingStopped() {}

    // Called on the UI thread, once, when the device goes away while started (unplugged, its
    // sound server gone); the input has stopped by then. Set before start().
    void setOnLost(std::function<void()> onLost) { onLost_ = std::move(onLost); }

protected:
    void reportLost() const {
        if (onLost_) {
            onLost_();
        }
    }

private:
    std::function<void()> onLost_;
};

// The running input of the device at an index of the engine's list, or nothing when there is no
// such device or it cannot be opened. The engine decides what each index is.
using MicrophoneChooser = std::function<std::unique_ptr<MicrophoneInput>(int deviceIndex)>;

} // namespace ravelcue::media
