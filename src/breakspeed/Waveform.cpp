#include "Waveform.h"

#include <algorithm>
#include <cmath>

namespace ravelcue::breakspeed {

int WaveformScaleHeight(std::span<const std::int16_t> samples) {
    int largest = 0;
    const std::size_t stop = samples.size() < 2 ? 0 : samples.size() - 1; // i <= ub - 1
    for (std::size_t i = 0; i < stop; i += 2) {
        largest = std::max(largest, static_cast<int>(samples[i]));
    }
    return 2 * largest;
}

namespace {

// Collects, column by column, the rows that the lines through the points cover. A point lies in
// column floor(X); a line crossing from one column into the next covers, in each, the rows up to
// where it meets their border.
class ColumnCollector {
public:
    ColumnCollector(std::vector<std::optional<ColumnSpan>>& columns)
        : columns_(columns) {}

    void add(int column, double y) {
        if (column < 0 || column >= static_cast<int>(columns_.size())) {
            return;
        }
        std::optional<ColumnSpan>& span = columns_[static_cast<std::size_t>(column)];
        if (!span) {
            span = ColumnSpan{y, y};
        } else {
            span->top = std::min(span->top, y);
            span->bottom = std::max(span->bottom, y);
        }
    }

    // The line from (xa, ya) to (xb, yb), xa < xb, over the column borders between them.
    void crossBorders(double xa, double ya, double xb, double yb, int fromColumn, int toColumn) {
        const int last = std::min(toColumn, static_cast<int>(columns_.size()));
        for (int border = std::max(fromColumn + 1, 0); border <= last; ++border) {
            const double y = ya + (yb - ya) * ((border - xa) / (xb - xa));
            add(border - 1, y);
            add(border, y);
        }
    }

private:
    std::vector<std::optional<ColumnSpan>>& columns_;
};

} // namespace

WaveformPlot PlotWaveform(std::span<const std::int16_t> samples, int start, int end,
                          int scaleHeight, int widthPx, int heightPx) {
    WaveformPlot plot;
    const long long scaleWidth = static_cast<long long>(end) - start;
    if (scaleWidth == 0 || scaleHeight == 0) {
        return plot;
    }
    plot.scale = WaveformScale{static_cast<double>(scaleWidth), static_cast<double>(scaleHeight)};
    plot.columns.assign(static_cast<std::size_t>(std::max(widthPx, 0)), std::nullopt);
    const long long lastWord = std::min<long long>(end, static_cast<long long>(samples.size()) - 1);
    if (start < 0 || start > lastWord || widthPx <= 0 || heightPx <= 0) {
        return plot; // scaleWidth < 0 lands here too: the words run out before the first
    }

    // Pixel coordinates exactly as the scale maps them; the column of a word offset x is found
    // in integers, so it never disagrees with floor(X) at a border.
    const double middle = scaleHeight / 2.0;
    const double pixelsPerUnit = static_cast<double>(heightPx) / scaleHeight;
    auto pixelX = [&](long long x) {
        return static_cast<double>(x) * widthPx / static_cast<double>(scaleWidth);
    };
    auto pixelY = [&](int sample) { return (middle + sample) * pixelsPerUnit; };
    auto columnOf = [&](long long x) { return static_cast<int>(x * widthPx / scaleWidth); };

    ColumnCollector collector(plot.columns);
    // The first line starts at the middle of the left edge, as if a sample of 0 stood at X 0.
    long long previousX = 0;
    int previousSample = 0;
    int column = 0;
    int low = 0;  // smallest and largest sample in the current column so far
    int high = 0; // (the rows they give are added when the column is left)
    auto leaveColumn = [&] {
        collector.add(column, pixelY(low));
        collector.add(column, pixelY(high));
    };
    // First x that lies in the next column: the smallest x with x * widthPx >= (column+1) * width.
    auto nextBorderX = [&](int c) {
        const long long need = (static_cast<long long>(c) + 1) * scaleWidth;
        return (need + widthPx - 1) / widthPx;
    };
    long long borderX = nextBorderX(column);

    for (long long i = start; i <= lastWord; i += 2) {
        const long long x = i - start;
        const int sample = samples[static_cast<std::size_t>(i)];
        if (x < borderX) {
            low = std::min(low, sample);
            high = std::max(high, sample);
        } else {
            leaveColumn();
            const int newColumn = columnOf(x);
            collector.crossBorders(pixelX(previousX), pixelY(previousSample), pixelX(x),
                                   pixelY(sample), column, newColumn);
            if (newColumn >= widthPx) {
                break; // only the last word, on the right edge, lies beyond the box
            }
            column = newColumn;
            low = high = sample;
            borderX = nextBorderX(column);
        }
        previousX = x;
        previousSample = sample;
    }
    leaveColumn(); // again after a break: the same rows, no harm
    return plot;
}

PixelRows RowsOf(const ColumnSpan& span, int heightPx) {
    const int bottomRow = std::max(heightPx - 1, 0);
    auto row = [&](double y) { return std::clamp(static_cast<int>(std::floor(y)), 0, bottomRow); };
    return {row(span.top), row(span.bottom)};
}

double XAtPixel(double pixel, int widthPx, const WaveformScale& scale) {
    return widthPx <= 0 ? 0.0 : pixel * scale.width / widthPx;
}

int ColumnAtX(double x, int widthPx, const WaveformScale& scale) {
    if (scale.width == 0) {
        return 0;
    }
    const double column = std::floor(x * widthPx / scale.width);
    return static_cast<int>(std::clamp(column, -1e9, 1e9));
}

} // namespace ravelcue::breakspeed
