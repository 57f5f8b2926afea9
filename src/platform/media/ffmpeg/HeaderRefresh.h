#pragma once

#include "FfmpegPtr.h"

#include <cstdint>
#include <memory>

#include <QByteArray>

namespace ravelcue::media::ffmpeg {

// What a file being written holds so far, all of it handed to the system.
struct WrittenSoFar {
    std::int64_t fileBytes = 0;
    std::int64_t packets = 0;      // video packets written
    std::int64_t lastDts = 0;      // of the last packet, in the stream's time base
    std::int64_t endTime100ns = 0; // the end of the last picture (its stamp and duration)
};

// The AVI and ASF muxers write the sizes, counts and lengths of their headers only when the file
// is finished; a recording cut off before that (a crash, a power cut) leaves a header that
// claims nothing or everything. This keeps those fields up to date while the file is written,
// through the muxer's own AVIOContext, so that a file cut off at any moment reads as a whole
// file up to the last refresh. The trailer then writes the final values over them as always.
class HeaderRefresh {
public:
    virtual ~HeaderRefresh() = default;

    // For a file of the muxer named formatName whose header, as written, starts with header.
    // Null for containers that need none (or whose header is not what is expected).
    static std::unique_ptr<HeaderRefresh> forHeader(const char* formatName,
                                                    const QByteArray& header);
    // How much of the file's start forHeader needs to see.
    static constexpr int kHeaderBytesRead = 64 * 1024;

    // Writes the fields for what the file holds and returns to its end. The file must have
    // been flushed to written.fileBytes.
    virtual int refresh(AVIOContext& file, const WrittenSoFar& written) = 0;
};

} // namespace ravelcue::media::ffmpeg
