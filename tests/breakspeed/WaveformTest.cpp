#include "breakspeed/Waveform.h"

#include "Recordings.h"

#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

namespace ravelcue::breakspeed {
namespace {

// What drawing every line of DrawWaveform would cover in each pixel column, found by trying
// each line against each column.
std::vector<std::optional<ColumnSpan>> EveryLine(const AudioSamples& samples, int start, int end,
                                                 int scaleHeight, int width, int height) {
    const double scaleWidth = static_cast<double>(end) - start;
    auto pixelY = [&](double y) { return y * height / scaleHeight; };
    std::vector<std::pair<double, double>> points{{0, pixelY(scaleHeight / 2.0)}};
    for (long long i = start; i <= end && i < static_cast<long long>(samples.size()); i += 2) {
        points.emplace_back(static_cast<double>(i - start) * width / scaleWidth,
                            pixelY(scaleHeight / 2.0 + samples[static_cast<size_t>(i)]));
    }
    std::vector<std::optional<ColumnSpan>> columns(static_cast<size_t>(width));
    for (int c = 0; c < width; ++c) {
        auto& span = columns[static_cast<size_t>(c)];
        auto add = [&](double y) {
            span =
                ColumnSpan{std::min(span ? span->top : y, y), std::max(span ? span->bottom : y, y)};
        };
        for (size_t k = 1; k < points.size(); ++k) {
            const auto [ax, ay] = points[k - 1];
            const auto [bx, by] = points[k];
            if (ax == bx && std::floor(ax) == c) {
                add(ay);
                add(by);
            } else if (ax != bx && ax < c + 1 && bx >= c) {
                auto yAt = [&](double x) { return ay + (by - ay) * ((x - ax) / (bx - ax)); };
                add(yAt(std::max(ax, static_cast<double>(c))));
                add(yAt(std::min(bx, static_cast<double>(c) + 1)));
            }
        }
    }
    return columns;
}

AudioSamples Noise(int words, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> level(-12000, 12000);
    AudioSamples samples(static_cast<size_t>(words));
    std::generate(samples.begin(), samples.end(),
                  [&] { return static_cast<std::int16_t>(level(random)); });
    return samples;
}

TEST(PlotWaveform, ColumnsCoverWhatEveryLineWouldDraw) {
    const AudioSamples samples = Noise(4001, 7);
    const int scaleHeight = WaveformScaleHeight(samples);
    struct Case {
        int start, end, width, height;
    };
    const Case cases[] = {
        {0, 4001, 97, 60},     // the whole recording, many words a column, past the last word
        {0, 4001, 800, 120},   // about two and a half words a column
        {1000, 1100, 800, 90}, // a stretch magnified: one line spans many columns
        {1001, 1301, 333, 90}, // an odd start: the other channel
        {3500, 5000, 211, 40}, // reaching past the end of the recording
        {0, 12, 7, 10},        // fewer words than columns, columns left empty
    };
    for (const Case& c : cases) {
        const WaveformPlot plot =
            PlotWaveform(samples, c.start, c.end, scaleHeight, c.width, c.height);
        ASSERT_TRUE(plot.scale);
        EXPECT_EQ(*plot.scale, (WaveformScale{double(c.end - c.start), double(scaleHeight)}));
        const auto expected = EveryLine(samples, c.start, c.end, scaleHeight, c.width, c.height);
        ASSERT_EQ(plot.columns.size(), expected.size());
        for (size_t col = 0; col < expected.size(); ++col) {
            ASSERT_EQ(plot.columns[col].has_value(), expected[col].has_value())
                << c.start << ".." << c.end << " column " << col;
            if (expected[col]) {
                EXPECT_NEAR(plot.columns[col]->top, expected[col]->top, 1e-9) << col;
                EXPECT_NEAR(plot.columns[col]->bottom, expected[col]->bottom, 1e-9) << col;
            }
        }
    }
}

TEST(PlotWaveform, ScaleOrientationAndBlankBoxes) {
    // The scale looks at words 0, 2, ... up to ub - 1: the header counts, the right channel and
    // the last word of an odd count don't.
    EXPECT_EQ(WaveformScaleHeight(AudioSamples{300, 30000, 50}), 600);
    EXPECT_EQ(WaveformScaleHeight(AudioSamples{-5, 30000, -7, 10}), 0);
    EXPECT_EQ(WaveformScaleHeight(AudioSamples{}), 0);

    // Positive samples go down from the middle; the loudest reaches the bottom row.
    AudioSamples shot(100, 0);
    shot[50] = 1000;
    shot[60] = -500;
    const WaveformPlot plot = PlotWaveform(shot, 0, 100, WaveformScaleHeight(shot), 100, 40);
    EXPECT_DOUBLE_EQ(plot.columns[50]->bottom, 40);
    EXPECT_DOUBLE_EQ(plot.columns[60]->top, 10);
    EXPECT_DOUBLE_EQ(plot.columns[20]->top, 20);
    EXPECT_EQ(RowsOf(*plot.columns[50], 40).last, 39);
    EXPECT_EQ(RowsOf(*plot.columns[60], 40).first, 10);
    EXPECT_EQ(RowsOf(ColumnSpan{-3, 100}, 40).first, 0);

    const AudioSamples samples = Noise(2000, 3);
    const int height = WaveformScaleHeight(samples);
    auto blank = [](const WaveformPlot& p) {
        return std::none_of(p.columns.begin(), p.columns.end(), [](auto& c) { return c; });
    };
    // A start before the recording (detection near its beginning), or a stretch dragged from
    // right to left: the scale is set and the box stays blank.
    const WaveformPlot early = PlotWaveform(samples, -3000, 800, height, 100, 50);
    EXPECT_EQ(early.scale, (WaveformScale{3800, double(height)}));
    EXPECT_TRUE(blank(early));
    const WaveformPlot backwards = PlotWaveform(samples, 900, 400, height, 100, 50);
    EXPECT_EQ(backwards.scale, (WaveformScale{-500, double(height)}));
    EXPECT_TRUE(blank(backwards));
    // A click without a drag, or nothing above zero: no scale, blank.
    EXPECT_FALSE(PlotWaveform(samples, 700, 700, height, 100, 50).scale);
    EXPECT_FALSE(PlotWaveform(samples, 0, 2000, 0, 100, 50).scale);
    EXPECT_TRUE(blank(PlotWaveform(samples, 0, 2000, height, 0, 50)));
}

TEST(Waveform, MousePositionsAndLinesInWordUnits) {
    // Picture1: X is a word index. Picture2: X counts words from the start of the stretch.
    const WaveformScale whole{5336100, 60000};
    EXPECT_DOUBLE_EQ(XAtPixel(400, 800, whole), 2668050);
    EXPECT_EQ(ColumnAtX(2668050, 800, whole), 400);
    EXPECT_EQ(ColumnAtX(2668049, 800, whole), 399);
    const WaveformScale stretch{18820, 60000};
    EXPECT_DOUBLE_EQ(XAtPixel(800, 800, stretch), 18820);
    EXPECT_LT(ColumnAtX(-10, 800, stretch), 0); // a line left of the stretch lies left of the box
    // Magnified, a mark at a whole word stands in the column where that word begins.
    const WaveformScale magnified{100, 60000};
    EXPECT_DOUBLE_EQ(XAtPixel(36, 800, magnified), 4.5);
    EXPECT_EQ(ColumnAtX(4, 800, magnified), 32);
    EXPECT_EQ(ColumnAtX(5, 800, magnified), 40);
}

} // namespace
} // namespace ravelcue::breakspeed
