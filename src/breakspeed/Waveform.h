#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// The waveform of a recording as a box shows it. A box has its own scale: X runs from 0 to
// ScaleWidth = end - start words across the box, so X in Picture1 (start 0) is a word index and X
// in Picture2 an offset in words from the start of the stretch; Y runs from 0 to ScaleHeight,
// twice the loudest left-channel sample, downward, with the zero line in the middle. One channel
// is drawn: the words start, start + 2, ... joined by lines, beginning at the middle of the left
// edge. Instead of millions of lines the box gets, per pixel column, the span those lines cover.
namespace ravelcue::breakspeed {

struct WaveformScale {
    double width = 0;  // ScaleWidth, words; negative when the stretch runs backwards
    double height = 0; // ScaleHeight
    bool operator==(const WaveformScale&) const = default;
};

// ScaleHeight for a recording: twice the largest of the words 0, 2, 4, ... up to the upper bound
// minus 1, header words included, never below 0. The same for both boxes, so they compare.
int WaveformScaleHeight(std::span<const std::int16_t> samples);

// The rows a column's lines cover, in pixels from the top, continuous: top <= bottom.
struct ColumnSpan {
    double top = 0;
    double bottom = 0;
    bool operator==(const ColumnSpan&) const = default;
};

struct WaveformPlot {
    // The box's new scale; nothing when the stretch or the height is 0, which leaves the box
    // blank and its scale as it was.
    std::optional<WaveformScale> scale;
    // One entry per pixel column, nothing where no line passes.
    std::vector<std::optional<ColumnSpan>> columns;
};

// DrawWaveform for a box of widthPx x heightPx pixels over the words start..end. Drawing stops at
// the end of the recording, and a start outside it leaves the box blank.
WaveformPlot PlotWaveform(std::span<const std::int16_t> samples, int start, int end,
                          int scaleHeight, int widthPx, int heightPx);

// Pixel rows [first, last] to paint for a column span, inside a box heightPx high.
struct PixelRows {
    int first = 0;
    int last = 0;
};
PixelRows RowsOf(const ColumnSpan& span, int heightPx);

// Mouse position in a box to its X in scale units, and an X back to the pixel column it falls in
// (which may lie outside the box).
double XAtPixel(double pixel, int widthPx, const WaveformScale& scale);
int ColumnAtX(double x, int widthPx, const WaveformScale& scale);

} // namespace ravelcue::breakspeed
