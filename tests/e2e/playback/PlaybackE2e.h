#pragma once

#include "platform/media/demo/DemoStamp.h"
#include "platform/media/ffmpeg/FfmpegPlayer.h"
#include "playback/PlaybackWindow.h"

#include <vector>

#include <QStringList>

#include <gtest/gtest.h>

namespace ravelcue::test {

// A Set of the four demo cameras, about two and a half seconds long, recorded through the
// window's capture controls. It is recorded once for each build of the tests and kept beside
// them; runs of the tests side by side take turns through a lock file.
struct RecordedSet {
    QString base = QStringLiteral("rally");
    // The members in camera order, each with the stamps of its frames in file order.
    QStringList members;
    std::vector<std::vector<media::DemoStamp>> stamps;
};

// Empty members when the recording failed; the reason has been reported to the test.
const RecordedSet& recordedSet();

// The stamp of every frame of a file, as ffmpeg decodes them.
std::vector<media::DemoStamp> stampsOfFrames(const QString& path);

// The main window on the FFmpeg engine with no camera connected, as it plays files.
class RealPlaybackWindow : public PlaybackWindow {
public:
    RealPlaybackWindow()
        : PlaybackWindow(DemoDevices{}) {}

    media::ffmpeg::FfmpegPlayer& real(int i) {
        return dynamic_cast<media::ffmpeg::FfmpegPlayer&>(player(i));
    }
    // Copies the recorded Set into the videos folder and returns the member of camera `pick`.
    QString copySet(const RecordedSet& set, int pick);
    // Waits until each active player shows the frame last asked for and its view has it, and
    // knows its exact length.
    void waitShown();
    // The demo stamp on the picture player i's view shows.
    media::DemoStamp stampOnShow(int i);
    // Largest difference of the frame counters on show among the active players.
    int counterSpread();
    // Every active player shows the frame of its file that PlayerGetFrame names.
    ::testing::AssertionResult showTheirFrames(const RecordedSet& set);
    // The speed list's top entry, as the user scrolls it.
    void chooseSpeed(int topIndex);
};

} // namespace ravelcue::test
