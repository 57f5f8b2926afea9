#pragma once

#include <vector>

#include <QImage>
#include <QString>
#include <QStringList>

namespace ravelcue::test {

// Runs the ffmpeg command line quietly (-v error -y are added); true when it succeeded.
bool runFfmpeg(const QStringList& arguments);
// Writes a video from one of ffmpeg's lavfi sources, e.g.
// makeVideo(path, "testsrc2=size=176x100:rate=25:duration=2", {"-c:v", "mjpeg"}).
bool makeVideo(const QString& path, const QString& lavfiSource, const QStringList& encoding);
// The frames ffmpeg's select filter picks by number (select=eq(n\,N)), as RGB32 images, in the
// order asked for. Empty on failure.
std::vector<QImage> extractFrames(const QString& path, const std::vector<int>& numbers);
QImage extractFrame(const QString& path, int number);
// Presentation times in milliseconds of every frame ffprobe decodes, in order.
std::vector<double> frameTimesMs(const QString& path);

// The numbers of the frames ffprobe decodes as keyframes, ascending.
std::vector<int> keyframeNumbers(const QString& path);

// Seconds of sound in the file's first audio stream, from its first packet to the end of its
// last; 0 when it has none.
double soundSeconds(const QString& path);

// Mean absolute difference of the colour channels over the whole picture (0..255); a large
// number when the sizes differ.
double meanDifference(const QImage& a, const QImage& b);

} // namespace ravelcue::test
