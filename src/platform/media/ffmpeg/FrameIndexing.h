#pragma once

#include "../MediaError.h"
#include "FfmpegPtr.h"
#include "FrameIndex.h"

#include <atomic>
#include <memory>
#include <vector>

#include <QString>

namespace ravelcue::media::ffmpeg {

// What a frame index is built from: the video packets of the whole file, in file order, and what
// the stream says of its timing. Small enough to keep on disk for a file opened again.
struct IndexPackets {
    std::vector<FrameIndex::Packet> packets;
    AVRational timeBase{1, 1000};
    AVRational frameRate{0, 1};
    int outputDelay = 0;

    std::shared_ptr<const FrameIndex> build() const;
};

// Opens the file and picks its best video stream; every other stream is discarded.
MediaError openVideoInput(const QString& path, InputContextPtr& input, AVStream*& stream);

// The stream's rate and decoder delay, as the index wants them.
IndexPackets timingOf(const AVStream& stream);

// Reads the video packets from where the input stands to its end into packets.packets. A set
// stop flag ends the reading early with an error.
MediaError readIndexPackets(AVFormatContext& input, const AVStream& stream, IndexPackets& packets,
                            const std::atomic<bool>* stop = nullptr);

// Opens the file on its own and reads all of it.
MediaError readIndexPackets(const QString& path, IndexPackets& packets,
                            const std::atomic<bool>* stop = nullptr);

} // namespace ravelcue::media::ffmpeg
