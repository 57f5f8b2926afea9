// A sound card's input through Qt Multimedia, as the program records breaks from it: a private
// PulseAudio server with null outputs stands in for the card, and each output's monitor is the
// microphone. A program of its own, since the server must be there before anything in the
// process asks for sound devices.

#include "breakspeed/AudioAnalysis.h"
#include "core/ToneBus.h"
#include "platform/media/AudioInstance.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/audio/WavFileWriter.h"
#include "platform/media/demo/DemoMicrophone.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"
#include "support/SoundServer.h"
#include "support/TempFolder.h"

#include <cmath>
#include <string>

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>
#include <QtEndian>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

using media::AudioInstance;
using media::CaptureInstance;

constexpr int kRate = 44100;

// Writes the demo microphone's first break of `seed` as a WAV to be played: the room, the click
// and the crash, with half a second after it.
bool writeBreak(const QString& path, std::uint64_t seed) {
    const media::DemoBreak shot = media::demoBreak(seed, 0);
    const double seconds = shot.startSeconds + media::demoBreakDelaySeconds(shot.speedMph) + 0.5;
    const int frames = int(std::lround(seconds * kRate));
    media::DemoSoundSynth synth;
    synth.setBreaks(0, seed);
    std::vector<std::int16_t> samples(size_t(frames) * 2);
    synth.render(0, frames, {}, samples.data());
    media::WavFileWriter wav;
    QString reason;
    if (!wav.open(path, reason) || !wav.append(samples.data(), frames)) {
        return false;
    }
    wav.close();
    return true;
}

int indexNamed(media::DeviceCatalog& devices, const QString& name, bool audio) {
    const int count = audio ? devices.AudioDeviceCount() : devices.VideoDeviceCount();
    for (int i = 0; i < count; ++i) {
        if ((audio ? devices.AudioDeviceName(i) : devices.VideoDeviceName(i)) == name) {
            return i;
        }
    }
    return -1;
}

// The data size the 44-byte header gives, -1 when the file is shorter than its header.
qint64 headerDataBytes(const QString& path) {
    QFile file(path);
    const QByteArray header = file.open(QIODevice::ReadOnly) ? file.read(44) : QByteArray();
    return header.size() == 44 ? qFromLittleEndian<quint32>(header.constData() + 40) : -1;
}

class MicrophoneDevice : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        server_ = std::make_unique<PrivateSoundServer>();
        if (server_->running()) {
            for (const char* name : {"table", "unplugged"}) {
                const QString sink = QStringLiteral("ravelcue_") + QLatin1String(name);
                server_->addNullSink(sink, sink);
            }
            tableModule_ =
                server_->addInputOf(QStringLiteral("ravelcue_table"), QStringLiteral("Table"));
            unpluggedModule_ = server_->addInputOf(QStringLiteral("ravelcue_unplugged"),
                                                   QStringLiteral("Unplugged"));
        }
    }
    static void TearDownTestSuite() { server_.reset(); }

    void SetUp() override {
        if (!server_->running() || tableModule_ < 0 || unpluggedModule_ < 0) {
            GTEST_SKIP() << "no PulseAudio server to play into and record from (pulseaudio and "
                            "pactl are needed)";
        }
        media::ffmpeg::FfmpegEngineOptions options;
        options.demoMicrophoneSeed = 1;
        options.randomDemoSeed = false;
        engine_ = std::make_unique<media::ffmpeg::FfmpegEngine>(tones_, std::move(options));
    }

    // The microphone on the input of that description, recording to `file`.
    std::unique_ptr<AudioInstance> microphone(const QString& description, const QString& file) {
        auto audio = engine_->createAudio();
        const int index = indexNamed(engine_->devices(), description, true);
        QStringList listed;
        for (int i = 0; i < engine_->devices().AudioDeviceCount(); ++i) {
            listed << engine_->devices().AudioDeviceName(i);
        }
        EXPECT_GE(index, 0) << "no input " << description.toStdString() << " among "
                            << listed.join(", ").toStdString();
        audio->SetAudioDevice(index);
        EXPECT_TRUE(audio->SetConnected(true));
        audio->SetCaptureFile(file);
        return audio;
    }

    static inline std::unique_ptr<PrivateSoundServer> server_;
    static inline int tableModule_ = -1;
    static inline int unpluggedModule_ = -1;
    ToneBus tones_;
    std::unique_ptr<media::ffmpeg::FfmpegEngine> engine_;
    TempFolder folder_;
};

// The sound card keeps every sample, so the time between the onsets comes out to the sample:
// the speed is the one played, within what two samples either way make of it.
TEST_F(MicrophoneDevice, ABreakPlayedToTheCardIsMeasuredAtItsSpeed) {
    for (const std::uint64_t seed : {11u, 4242u}) {
        SCOPED_TRACE(seed);
        const QString played = folder_.file(QStringLiteral("break%1.wav").arg(seed));
        const QString recorded = folder_.file(QStringLiteral("breakspeed%1.wav").arg(seed));
        ASSERT_TRUE(writeBreak(played, seed));
        auto audio = microphone(QStringLiteral("Table"), recorded);
        ASSERT_TRUE(audio->Connected());
        ASSERT_TRUE(audio->StartCapture().ok());
        QTest::qWait(300);
        ASSERT_TRUE(server_->playInto(QStringLiteral("ravelcue_table"), played));
        // Played out; what the card heard reaches the file a little later, in order: a second
        // more in the file holds it whole.
        const qint64 playedOut = QFileInfo(recorded).size();
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return QFileInfo(recorded).size() >= playedOut + kRate * 4; }, 20000));
        audio->StopCapture();
        EXPECT_EQ(headerDataBytes(recorded), QFileInfo(recorded).size() - 44);

        const breakspeed::LoadedAudio loaded = breakspeed::LoadAudioFile(recorded.toStdString());
        ASSERT_EQ(loaded.result, breakspeed::LoadResult::Loaded);
        const breakspeed::PeakDetection found =
            breakspeed::DetectPeaks(loaded.samples, 0, "48", breakspeed::SpeedSettings{0, 1});
        ASSERT_TRUE(found.secondPeak.has_value());

        const media::DemoBreak shot = media::demoBreak(seed, 0);
        const double delay = media::demoBreakDelaySeconds(shot.speedMph);
        const double twoSamples = 2.0 / kRate;
        EXPECT_NEAR(found.deltaTime, delay, twoSamples + 1e-6);
        ASSERT_TRUE(found.update.speed.has_value());
        // Two samples on the delay, and the two decimals shown.
        const double speedSlack = shot.speedMph * twoSamples / (delay - twoSamples) + 0.005;
        EXPECT_NEAR(std::stod(*found.update.speed), shot.speedMph, speedSlack);
    }
}

TEST_F(MicrophoneDevice, AMicrophoneThatVanishesEndsItsRecordingWithAMessageAndTheCameraGoesOn) {
    const QString video = folder_.file(QStringLiteral("cam.avi"));
    auto camera = engine_->createCapture(0);
    camera->SetVideoDevice(indexNamed(engine_->devices(), QStringLiteral("Demo Camera 1"), false));
    camera->SetVideoSize(320, 240);
    camera->SetConnected(true);
    camera->SetCaptureFile(video);
    ASSERT_TRUE(camera->StartCapture().ok());

    const QString wav = folder_.file(QStringLiteral("breakspeed.wav"));
    auto audio = microphone(QStringLiteral("Unplugged"), wav);
    ASSERT_TRUE(audio->StartCapture().ok());
    // A tenth of a second of sound is in the file before the card goes.
    constexpr qint64 kBytesPerSecond = kRate * 4;
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return QFileInfo(wav).size() > 44 + kBytesPerSecond / 10; }, 20000));
    const qint64 heardBefore = QFileInfo(wav).size() - 44;
    QSignalSpy failed(audio.get(), &AudioInstance::captureFailed);
    ASSERT_TRUE(server_->removeModule(unpluggedModule_));
    unpluggedModule_ = -1;
    ASSERT_TRUE(failed.wait(20000)) << "the recording went on without its microphone";
    EXPECT_EQ(failed.takeFirst().at(0).toString(),
              "The microphone stopped sending sound. The recording up to that moment is kept in "
              "breakspeed.wav.");
    EXPECT_FALSE(audio->IsCapturing());
    EXPECT_FALSE(audio->Connected());
    // Closed whole: the header gives what is there, and another program reads it.
    const qint64 heard = QFileInfo(wav).size() - 44;
    EXPECT_GE(heard, heardBefore);
    EXPECT_EQ(headerDataBytes(wav), heard);
    EXPECT_NEAR(soundSeconds(wav), double(heard) / kBytesPerSecond, 1e-3);
    QTest::qWait(300);
    EXPECT_TRUE(failed.isEmpty()) << "said once";

    // The other camera goes on writing, however busy the machine.
    const int writtenBefore = camera->GetCaptureStats().framesWritten;
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return camera->GetCaptureStats().framesWritten > writtenBefore; }, 30000));
    EXPECT_TRUE(camera->IsCapturing());
    camera->StopCapture();
    EXPECT_TRUE(probeVideo(video).ok);
}

} // namespace
} // namespace ravelcue::test
