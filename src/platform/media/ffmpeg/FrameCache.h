#pragma once

#include "VideoFileReader.h"

#include <cstdint>
#include <map>

namespace ravelcue::media::ffmpeg {

// Decoded frames around the one on show, so that stepping back does not decode a whole group
// of pictures again. Holds as many frames as fit the byte budget and drops those farthest from
// the frame on show first. One thread at a time.
class FrameCache {
public:
    explicit FrameCache(std::size_t budgetBytes)
        : budgetBytes_(budgetBytes) {}

    void put(std::int64_t number, SharedFrame frame, std::int64_t onShow);
    SharedFrame get(std::int64_t number) const;
    bool contains(std::int64_t number) const { return frames_.count(number) != 0; }
    void clear() { frames_.clear(); }
    // How many frames of the size seen so far fit the budget.
    std::int64_t capacity() const;
    std::size_t size() const { return frames_.size(); }

private:
    std::size_t budgetBytes_;
    std::size_t frameBytes_ = 0;
    std::map<std::int64_t, SharedFrame> frames_;
};

} // namespace ravelcue::media::ffmpeg
