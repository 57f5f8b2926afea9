#include "FrameCache.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>

namespace ravelcue::media::ffmpeg {

std::int64_t FrameCache::capacity() const {
    if (frameBytes_ == 0) {
        return 2;
    }
    return std::max<std::int64_t>(2, static_cast<std::int64_t>(budgetBytes_ / frameBytes_));
}

void FrameCache::put(std::int64_t number, SharedFrame frame, std::int64_t onShow) {
    if (!frame) {
        return;
    }
    if (frameBytes_ == 0) {
        const int bytes = av_image_get_buffer_size(static_cast<AVPixelFormat>(frame->format),
                                                   frame->width, frame->height, 1);
        frameBytes_ = bytes > 0 ? static_cast<std::size_t>(bytes) : 1;
    }
    frames_[number] = std::move(frame);
    while (static_cast<std::int64_t>(frames_.size()) > capacity()) {
        // The farther end from the frame on show goes first.
        const auto first = frames_.begin();
        const auto last = std::prev(frames_.end());
        const std::int64_t below = onShow - first->first;
        const std::int64_t above = last->first - onShow;
        frames_.erase(below >= above ? first : last);
    }
}

SharedFrame FrameCache::get(std::int64_t number) const {
    const auto it = frames_.find(number);
    return it == frames_.end() ? nullptr : it->second;
}

} // namespace ravelcue::media::ffmpeg
