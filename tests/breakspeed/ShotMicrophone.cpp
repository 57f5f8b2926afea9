#include "ShotMicrophone.h"

#include "platform/media/audio/WavFileWriter.h"

#include <algorithm>
#include <vector>

#include <QFile>

namespace ravelcue::test {

media::MediaError ShotMicrophone::StartCapture() {
    ++captures_;
    if (refuseWrites_) {
        return {media::media_error::WriteFailed, file_ + QStringLiteral(": Permission denied")};
    }
    started_ = std::chrono::steady_clock::now();
    capturing_ = true;
    return {};
}

void ShotMicrophone::StopCapture() {
    if (!capturing_) {
        return;
    }
    capturing_ = false;
    constexpr int kRate = media::DemoSoundSynth::kSampleRate;
    const std::chrono::duration<double> heard = std::chrono::steady_clock::now() - started_;
    int frames = static_cast<int>(heard.count() * kRate);
    media::DemoSoundSynth synth;
    if (seed_) {
        synth.setBreaks(0, *seed_);
        const media::DemoBreak shot = media::demoBreak(*seed_, 0);
        const double crashEnds =
            shot.startSeconds + media::demoBreakDelaySeconds(shot.speedMph) + 1;
        frames = std::max(frames, static_cast<int>(crashEnds * kRate));
    }
    std::vector<std::int16_t> words(static_cast<size_t>(frames) * 2);
    synth.render(0, frames, {}, words.data());

    QFile file(file_);
    if (file.open(QIODevice::WriteOnly)) {
        const auto bytes = static_cast<qsizetype>(words.size() * 2);
        file.write(media::WavFileWriter::header(static_cast<std::uint32_t>(bytes)));
        file.write(reinterpret_cast<const char*>(words.data()), bytes);
    }
}

} // namespace ravelcue::test
