// A recording as the Break Speed pane loads breakspeed.wav and as ravelcue-breakspeed reads any
// sound file: loaded, measured and drawn in both waveform boxes.
#include "FuzzInput.h"
#include "breakspeed/AudioAnalysis.h"
#include "breakspeed/RecordingFile.h"
#include "breakspeed/Waveform.h"

#include <span>

extern "C" {
#include <libavutil/log.h>
}

using namespace ravelcue::breakspeed;

namespace {

constexpr int kBoxWidth = 400;
constexpr int kBoxHeight = 100;

void measureAndDraw(std::span<const std::int16_t> samples) {
    const PeakDetection detection = DetectPeaks(samples, 2, "48", SpeedSettings{});
    const int scaleHeight = WaveformScaleHeight(samples);
    const auto words = static_cast<int>(samples.size());
    const WaveformPlot whole = PlotWaveform(samples, 0, words, scaleHeight, kBoxWidth, kBoxHeight);
    ravelcue::fuzz::check(whole.columns.size() <= static_cast<std::size_t>(kBoxWidth),
                          "a waveform has no more columns than its box has pixels");
    if (detection.selection) {
        const WaveformPlot part =
            PlotWaveform(samples, detection.selection->start, detection.selection->end, scaleHeight,
                         kBoxWidth, kBoxHeight);
        for (const std::optional<ColumnSpan>& column : part.columns) {
            if (column) {
                const PixelRows rows = RowsOf(*column, kBoxHeight);
                ravelcue::fuzz::check(rows.first <= rows.last, "a column's rows are in order");
            }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    av_log_set_level(AV_LOG_QUIET);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::filesystem::path path = ravelcue::fuzz::inputFile("breakspeed.wav", data, size);

    // The pane: the file's bytes as words, from byte 0.
    const LoadedAudio loaded = LoadAudioFile(path);
    ravelcue::fuzz::check((loaded.result == LoadResult::Loaded) == !loaded.samples.empty(),
                          "only a loaded recording holds samples");
    if (loaded.result == LoadResult::Loaded) {
        measureAndDraw(loaded.samples);
    }

    // The companion: any format FFmpeg reads, converted.
    std::string reason;
    if (const std::optional<AudioSamples> recording = ReadRecording(path.string(), reason)) {
        measureAndDraw(*recording);
    } else {
        ravelcue::fuzz::check(!reason.empty(), "a recording that can't be read says why");
    }
    return 0;
}
