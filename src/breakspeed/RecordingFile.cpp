#include "RecordingFile.h"

#include "platform/media/ffmpeg/SoundFileReader.h"

#include <filesystem>
#include <system_error>

namespace ravelcue::breakspeed {

std::optional<AudioSamples> ReadRecording(const std::string& file, std::string& reason) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        reason = std::filesystem::exists(file, error) ? "not a file" : "no such file";
        return std::nullopt;
    }
    if (std::filesystem::file_size(file, error) == 0) {
        reason = "the file is empty";
        return std::nullopt;
    }
    media::ffmpeg::SoundReading sound = media::ffmpeg::readSound(file, kLongestRecordingSeconds);
    if (!sound.error.empty()) {
        reason = sound.error;
        return std::nullopt;
    }
    if (sound.plainWav) {
        const auto longest = static_cast<std::uintmax_t>(kRecordingHeaderWords * 2 +
                                                         kLongestRecordingSeconds * 44100 * 4);
        LoadedAudio loaded = LoadAudioFile(file, longest);
        if (loaded.result != LoadResult::Loaded) {
            reason = "the file can't be read";
            return std::nullopt;
        }
        if (loaded.samples.size() <= static_cast<std::size_t>(kRecordingHeaderWords)) {
            reason = "the recording holds no sound";
            return std::nullopt;
        }
        return std::move(loaded.samples);
    }
    sound.words.insert(sound.words.begin(), kRecordingHeaderWords, 0);
    return std::move(sound.words);
}

} // namespace ravelcue::breakspeed
