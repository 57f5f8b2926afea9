// A video or picture file as a player opens it: the reader with the header's estimate, a few
// frames stepped, then the index of the whole file adopted, more frames stepped, and the last
// stretch from its keyframe. The file is named by what it looks
// like, as a user's file would be, so that the picture demuxers see .jpg names.
#include "FuzzInput.h"
#include "platform/media/ffmpeg/FrameIndexing.h"
#include "platform/media/ffmpeg/VideoFileReader.h"

#include <array>
#include <cstring>

extern "C" {
#include <libavutil/log.h>
}

using namespace ravelcue::media;
using namespace ravelcue::media::ffmpeg;
using ravelcue::fuzz::check;

namespace {

constexpr int kFramesStepped = 4;

bool startsWith(std::string_view data, std::size_t at, std::string_view magic) {
    return data.size() >= at + magic.size() && data.substr(at, magic.size()) == magic;
}

const char* fileNameFor(std::string_view data) {
    if (startsWith(data, 0, "RIFF") && startsWith(data, 8, "AVI ")) {
        return "input.avi";
    }
    if (startsWith(data, 0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11")) {
        return "input.wmv";
    }
    if (startsWith(data, 0, "\x1A\x45\xDF\xA3")) {
        return "input.mkv";
    }
    if (startsWith(data, 4, "ftyp") || startsWith(data, 4, "moov") || startsWith(data, 4, "mdat")) {
        return "input.mp4";
    }
    if (startsWith(data, 0, "\xFF\xD8")) {
        return "input.jpg";
    }
    static constexpr std::array<const char*, 5> kAny{"input.avi", "input.wmv", "input.mp4",
                                                     "input.mkv", "input.jpg"};
    return kAny[data.size() % kAny.size()];
}

void stepFrames(VideoFileReader& reader) {
    for (int i = 0; i < kFramesStepped; ++i) {
        const std::optional<DecodedFrame> decoded = reader.next();
        if (!decoded) {
            break;
        }
        check(decoded->frame != nullptr, "a decoded frame holds a picture");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    av_log_set_level(AV_LOG_QUIET);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = ravelcue::fuzz::asText(data, size);
    const std::filesystem::path path = ravelcue::fuzz::inputFile(fileNameFor(bytes), data, size);
    const QString name = QString::fromStdString(path.string());
    MediaError error;
    std::unique_ptr<VideoFileReader> reader = VideoFileReader::open(name, error);
    if (!reader) {
        std::filesystem::remove(path);
        check(error.number != 0 && !error.text.isEmpty(), "a file that can't open says why");
        return 0;
    }
    // As a player opens it: the header's estimate, the first frames, then the index of the whole
    // file arriving while it is open.
    check(reader->index()->count() >= 0, "an estimate counts no fewer than no frames");
    check(reader->width() >= 0 && reader->height() >= 0, "a picture has no negative side");
    reader->frameRate();
    stepFrames(*reader);
    IndexPackets packets;
    const bool indexed = reader->isStillImage() || readIndexPackets(name, packets).ok();
    std::filesystem::remove(path);
    if (!indexed) {
        return 0;
    }
    if (!reader->isStillImage()) {
        reader->adoptIndex(packets.build());
    }
    const FrameIndex& index = *reader->index();
    check(index.count() > 0, "an indexed video has frames");
    index.frameAt(index.durationMs());
    for (std::int64_t frame : {std::int64_t{0}, index.count() / 2, index.count() - 1}) {
        const std::int64_t keyframe = index.keyframeAtOrBefore(frame);
        check(keyframe >= 0 && keyframe <= frame, "a frame's keyframe comes before it");
        index.frameAt(index.timeMs(frame));
    }
    stepFrames(*reader);
    if (!reader->isStillImage()) {
        // The last stretch, as a step back from the end reaches it.
        reader->seekToKeyframe(index.keyframeAtOrBefore(index.count() - 1));
        stepFrames(*reader);
    }
    return 0;
}
