#include "OverlayBurner.h"

#include "FrameConverter.h"
#include "ImageFrames.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>

#include <QPainter>

namespace ravelcue::media::ffmpeg {

namespace {

// Rows of nothing between two covered stretches below which one band serves both.
constexpr int kMergeGap = 8;
// Band edges sit on this many pixels across, which keeps the scaler on its fast paths.
constexpr int kColumnAlign = 16;

int alignDown(int value, int step) {
    return value / step * step;
}

int alignUp(int value, int step) {
    return (value + step - 1) / step * step;
}

// Bytes from a plane's start to the pixel (x, y), or -1 where a plane is not addressable so.
std::ptrdiff_t planeOffset(const AVPixFmtDescriptor& desc, const AVFrame& frame, int plane, int x,
                           int y) {
    const bool chroma = (plane == 1 || plane == 2) && !(desc.flags & AV_PIX_FMT_FLAG_RGB);
    const int shiftX = chroma ? desc.log2_chroma_w : 0;
    const int shiftY = chroma ? desc.log2_chroma_h : 0;
    int step = 0;
    for (int c = 0; c < desc.nb_components; ++c) {
        if (desc.comp[c].plane == plane) {
            step = desc.comp[c].step;
            break;
        }
    }
    return static_cast<std::ptrdiff_t>(y >> shiftY) * frame.linesize[plane] +
           static_cast<std::ptrdiff_t>(x >> shiftX) * step;
}

} // namespace

std::vector<QRect> coveredAreas(const QImage& composed) {
    std::vector<QRect> areas;
    QRect current;
    int lastCoveredRow = -kMergeGap - 2;
    for (int y = 0; y < composed.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(composed.constScanLine(y));
        int left = -1;
        int right = -1;
        for (int x = 0; x < composed.width(); ++x) {
            if (qAlpha(row[x]) != 0) {
                if (left < 0) {
                    left = x;
                }
                right = x;
            }
        }
        if (left < 0) {
            continue;
        }
        const QRect rowArea(left, y, right - left + 1, 1);
        if (!current.isNull() && y - lastCoveredRow <= kMergeGap) {
            current = current.united(rowArea);
        } else {
            if (!current.isNull()) {
                areas.push_back(current);
            }
            current = rowArea;
        }
        lastCoveredRow = y;
    }
    if (!current.isNull()) {
        areas.push_back(current);
    }
    return areas;
}

OverlayBurner::OverlayBurner(QImage composed)
    : composed_(std::move(composed))
    , areas_(coveredAreas(composed_)) {}

bool OverlayBurner::burnsInPlace(AVPixelFormat format) {
    const AVPixFmtDescriptor* desc = av_pix_fmt_desc_get(format);
    return desc != nullptr && !(desc->flags & (AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM |
                                               AV_PIX_FMT_FLAG_HWACCEL));
}

void OverlayBurner::prepareBands(const AVFrame& frame) {
    bands_.clear();
    bandFormat_ = frame.format;
    const AVPixFmtDescriptor& desc = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const bool planar8 = (desc.flags & AV_PIX_FMT_FLAG_PLANAR) &&
                         std::all_of(desc.comp, desc.comp + desc.nb_components,
                                     [](const AVComponentDescriptor& c) { return c.step == 1; });
    const int rowAlign = 1 << desc.log2_chroma_h;
    const int columnAlign = std::max(kColumnAlign, 1 << desc.log2_chroma_w);
    const QRect picture(0, 0, frame.width, frame.height);
    for (const QRect& covered : areas_) {
        int top = alignDown(covered.top(), rowAlign);
        int bottom = std::min(frame.height, alignUp(covered.bottom() + 1, rowAlign));
        int left = 0;
        int right = frame.width;
        if (planar8) { // other layouts are converted a whole row at a time
            left = alignDown(covered.left(), columnAlign);
            right = std::min(frame.width, alignUp(covered.right() + 1, columnAlign));
        }
        const QRect area = QRect(QPoint(left, top), QPoint(right - 1, bottom - 1)) & picture;
        if (area.isEmpty()) {
            continue;
        }
        Band band;
        band.area = area;
        bool full = false;
        const AVPixelFormat plain =
            plainFormat(static_cast<AVPixelFormat>(frame.format), frame.color_range, full);
        band.toRgb.reset(sws_getContext(area.width(), area.height(), plain, area.width(),
                                        area.height(), AV_PIX_FMT_RGB32, SWS_BICUBIC, nullptr,
                                        nullptr, nullptr));
        band.fromRgb.reset(sws_getContext(area.width(), area.height(), AV_PIX_FMT_RGB32,
                                          area.width(), area.height(), plain, SWS_BICUBIC, nullptr,
                                          nullptr, nullptr));
        if (!band.toRgb || !band.fromRgb) {
            continue;
        }
        applyColourDetails(*band.toRgb, frame, true);
        applyColourDetails(*band.fromRgb, frame, false);
        band.rgb = scalerSafeImage(area.size());
        bands_.push_back(std::move(band));
    }
}

void OverlayBurner::burnInto(AVFrame& frame) {
    if (areas_.empty()) {
        return;
    }
    if (frame.format != bandFormat_) {
        prepareBands(frame);
    }
    const AVPixFmtDescriptor& desc = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const int planes = av_pix_fmt_count_planes(static_cast<AVPixelFormat>(frame.format));
    for (Band& band : bands_) {
        uint8_t* data[4] = {};
        int linesize[4] = {};
        for (int plane = 0; plane < planes && plane < 4; ++plane) {
            data[plane] =
                frame.data[plane] + planeOffset(desc, frame, plane, band.area.x(), band.area.y());
            linesize[plane] = frame.linesize[plane];
        }
        uint8_t* rgb[4] = {band.rgb.bits(), nullptr, nullptr, nullptr};
        const int rgbStride[4] = {static_cast<int>(band.rgb.bytesPerLine()), 0, 0, 0};
        sws_scale(band.toRgb.get(), data, linesize, 0, band.area.height(), rgb, rgbStride);
        {
            QPainter painter(&band.rgb);
            painter.drawImage(QPoint(0, 0), composed_, band.area);
        }
        const uint8_t* const rgbSource[4] = {band.rgb.constBits(), nullptr, nullptr, nullptr};
        sws_scale(band.fromRgb.get(), rgbSource, rgbStride, 0, band.area.height(), data, linesize);
    }
}

void OverlayBurner::burnInto(QImage& picture) const {
    if (areas_.empty()) {
        return;
    }
    QPainter painter(&picture);
    painter.drawImage(QPoint(0, 0), composed_);
}

} // namespace ravelcue::media::ffmpeg
