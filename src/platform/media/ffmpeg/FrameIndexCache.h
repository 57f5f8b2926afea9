#pragma once

#include "FrameIndexing.h"

#include <optional>

#include <QString>

namespace ravelcue::media::ffmpeg {

// The packets of files read before, one small file each in a folder of their own, so that a
// file opened again is exact at once. An entry holds for the file of that path with the size
// and the modification time it had when read; anything else in the entry, or an entry that
// does not read back whole, counts as none. Safe to use from several threads: an entry is
// written beside its place and moved there whole.
class FrameIndexCache {
public:
    explicit FrameIndexCache(QString folder);

    const QString& folder() const { return folder_; }
    std::optional<IndexPackets> load(const QString& videoPath) const;
    // False when the entry could not be written; the cache is only an aid.
    bool store(const QString& videoPath, const IndexPackets& packets) const;
    // Where the entry for that video lies.
    QString entryPath(const QString& videoPath) const;

private:
    QString folder_;
};

} // namespace ravelcue::media::ffmpeg
