#pragma once

#include "FrameIndex.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include <QString>

namespace ravelcue::media::ffmpeg {

class FrameIndexCache;

// Reads the frame index of a file on a thread of its own, while the file plays from its
// estimate, keeps it in the cache when there is one, and hands it to done on that thread: a null
// index when the file could not be read to its end. Going away calls the reading off.
class BackgroundIndexer {
public:
    using Done = std::function<void(std::shared_ptr<const FrameIndex>)>;

    BackgroundIndexer(QString path, std::shared_ptr<const FrameIndexCache> cache, Done done);
    ~BackgroundIndexer();
    BackgroundIndexer(const BackgroundIndexer&) = delete;
    BackgroundIndexer& operator=(const BackgroundIndexer&) = delete;

private:
    void run();

    QString path_;
    std::shared_ptr<const FrameIndexCache> cache_;
    Done done_;
    std::atomic<bool> stop_{false};
    std::jthread thread_; // last: starts when everything above is ready
};

} // namespace ravelcue::media::ffmpeg
