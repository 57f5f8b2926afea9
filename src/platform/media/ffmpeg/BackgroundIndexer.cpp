#include "BackgroundIndexer.h"

#include "FrameIndexCache.h"
#include "FrameIndexing.h"

namespace ravelcue::media::ffmpeg {

BackgroundIndexer::BackgroundIndexer(QString path, std::shared_ptr<const FrameIndexCache> cache,
                                     Done done)
    : path_(std::move(path))
    , cache_(std::move(cache))
    , done_(std::move(done)) {
    thread_ = std::jthread([this] { run(); });
}

BackgroundIndexer::~BackgroundIndexer() {
    stop_ = true;
    thread_.join();
}

void BackgroundIndexer::run() {
    IndexPackets packets;
    if (readIndexPackets(path_, packets, &stop_)) {
        if (!stop_ && done_) {
            done_(nullptr);
        }
        return;
    }
    if (cache_) {
        cache_->store(path_, packets);
    }
    if (!stop_ && done_) {
        done_(packets.build());
    }
}

} // namespace ravelcue::media::ffmpeg
