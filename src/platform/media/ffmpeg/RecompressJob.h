#pragma once

#include "../MediaError.h"
#include "../OverlayLayer.h"

#include <atomic>
#include <functional>

#include <QString>

namespace ravelcue::media::ffmpeg {

struct RecompressRequest {
    QString source;
    QString destination;
    double startMs = 0; // startMs and endMs both 0: the whole file
    double endMs = 0;
};

// Writes the frames of the span, every one and no other, into a new file with the overlay burnt
// in: the source's codec when Ravelcue encodes it, H.264 otherwise; the sound of the span is
// copied along when the container holds it. Decoding and burning run on
// the calling thread, encoding on a second one. The file is written under a temporary name
// beside the destination and renamed only when complete, so a failure or a cancel leaves
// nothing under the destination name. progress gets 0..100 as frames are written.
MediaError recompressVideo(const RecompressRequest& request, const OverlayLayer& overlay,
                           const std::atomic<bool>& cancelled,
                           const std::function<void(int percent)>& progress);

// A name the file is written under until it is complete: hidden, beside the destination.
QString temporaryNameFor(const QString& destination, const QString& stage = QString());

} // namespace ravelcue::media::ffmpeg
