#pragma once

#include "platform/media/CaptureStats.h"
#include "platform/media/MediaEngine.h"

#include <memory>

#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>

namespace ravelcue::test {

// An engine whose instances do nothing but write each call into one shared log, as
// "cam2.SetConnected(1)" or "player0.PlayerClose()", so that tests can check what the window asked
// of the engine and in which order. Its device lists hold the names it is given.
class RecordingEngine final : public media::MediaEngine {
public:
    // The devices listed are the demo devices' names unless others are given.
    explicit RecordingEngine(QStringList videoDevices = {"Demo Camera 1", "Demo Camera 2",
                                                         "Demo Camera 3", "Demo Camera 4"},
                             QStringList audioDevices = {"Demo Microphone"});
    ~RecordingEngine() override;

    media::DeviceCatalog& devices() override;
    std::unique_ptr<media::CaptureInstance> createCapture(int index) override;
    std::unique_ptr<media::PlayerInstance> createPlayer(int index) override;
    std::unique_ptr<media::RecompressInstance> createRecompress(int index) override;
    std::unique_ptr<media::AudioInstance> createAudio() override;

    // What the capture instances offer and do, set before the window is built.
    struct CaptureBehaviour {
        QStringList compressors{"MJPEG", "H.264", "MPEG-4", "FFV1", "HuffYUV"};
        QStringList profiles{"Video for dial-up modems (28.8 Kbps)",
                             "Video for broadband NTSC (1500 Kbps total)",
                             "Video for LAN (768 Kbps)"};
        QList<int> camerasThatFailToStart;
        media::CaptureStats stats{250, 2, 8333};
    };
    std::shared_ptr<CaptureBehaviour> captureBehaviour() { return behaviour_; }

    // What the players find in a file. A file with an openError number fails to open with it.
    struct MediaFile {
        QSize size{640, 480};
        double durationMs = 12340;
        int frameCount = 370;
        int openError = 0;
        // When above are the header's words: the length the player counts after the open,
        // taken on when its lengthKnown is raised (the test raises it).
        double countedDurationMs = 0;
        int countedFrameCount = 0;
    };
    // Files by path; any other path opens as defaultFile. Players move only when told to.
    struct PlayerBehaviour {
        MediaFile defaultFile;
        QMap<QString, MediaFile> files;
        // Players that do not answer, as one still decoding to the frame it stops on: they say
        // no to PlayerAnswers, note "PlayerGetPos() while busy" (where a real one would hold the
        // window up) when asked all the same, and time out saving a still.
        QList<int> busy;
        // The cursor shape the window showed during the last PlayerSaveFrame.
        Qt::CursorShape cursorAtSave = Qt::ArrowCursor;
    };
    std::shared_ptr<PlayerBehaviour> playerBehaviour() { return players_; }

    QStringList& log() { return *log_; }
    // The calls whose text starts with the prefix ("cam0.").
    QStringList calls(const QString& prefix) const;
    void clearLog() { log_->clear(); }

private:
    std::shared_ptr<QStringList> log_;
    std::shared_ptr<CaptureBehaviour> behaviour_ = std::make_shared<CaptureBehaviour>();
    std::shared_ptr<PlayerBehaviour> players_ = std::make_shared<PlayerBehaviour>();
    std::unique_ptr<media::DeviceCatalog> devices_;
};

} // namespace ravelcue::test
