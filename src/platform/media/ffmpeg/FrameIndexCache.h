#pragma once

#include "FrameIndexing.h"

#include <optional>

#include <QString>

namespace ravelcue::media::ffmpeg {

// The packets of files read before, one small file each in a folder of their own, so that a
// file opened again is exact at once. An entry holds for the file of that path with the size
// and the modification time it had when read; anything else in the entry, or an entry that
// does not read back whole, counts as none. Safe to use from several threads: an entry is
// written beside its place and moved there whole. The folder is kept within a budget of bytes:
// a new entry pushes out the entries read or written longest ago.
class FrameIndexCache {
public:
    // About 35 hours of video at 30 frames per second.
    static constexpr qint64 kDefaultBudgetBytes = 64LL * 1024 * 1024;

    explicit FrameIndexCache(QString folder, qint64 budgetBytes = kDefaultBudgetBytes);

    const QString& folder() const { return folder_; }
    std::optional<IndexPackets> load(const QString& videoPath) const;
    // False when the entry could not be written; the cache is only an aid.
    bool store(const QString& videoPath, const IndexPackets& packets) const;
    // Where the entry for that video lies.
    QString entryPath(const QString& videoPath) const;

private:
    // Removes the entries used longest ago until the folder fits the budget; `kept` stays.
    void trimTo(const QString& kept) const;

    QString folder_;
    qint64 budgetBytes_;
};

} // namespace ravelcue::media::ffmpeg
