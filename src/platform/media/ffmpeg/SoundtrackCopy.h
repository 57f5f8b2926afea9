#pragma once

#include "../MediaError.h"

#include <QString>

namespace ravelcue::media::ffmpeg {

// Joins a finished video-only file and the sound of its source, both copied packet for packet
// (no re-encoding) in time order, into output. The span is in the source's own seconds; its
// sound is moved to start where the video starts. added is false, and nothing is written, when
// the source has no sound or output's container cannot hold it.
MediaError copySoundtrack(const QString& videoOnly, const QString& source, double startSeconds,
                          double endSeconds, const QString& output, bool& added);

} // namespace ravelcue::media::ffmpeg
