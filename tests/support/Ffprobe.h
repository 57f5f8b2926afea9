#pragma once

#include <functional>
#include <vector>

#include <QImage>
#include <QString>

namespace ravelcue::test {

// What ffprobe says of a file's first video stream, frames counted by decoding them all.
struct VideoProbe {
    bool ok = false;
    QString formatName; // "avi", "asf", "matroska,webm", ...
    QString codecName;  // "mjpeg", "h264", ...
    int width = 0;
    int height = 0;
    int frameCount = 0;
    double frameRate = 0;       // the stream's average rate
    double durationSeconds = 0; // of the container
    QString errors;             // what ffprobe complained of while reading every frame
};

VideoProbe probeVideo(const QString& path);

// Decodes every frame of the first video stream with the ffmpeg command line, in file order,
// none added or left out, and hands each to visit as RGB888. False when ffmpeg failed.
bool forEachFrame(const QString& path, const std::function<void(int index, const QImage&)>& visit);
// The same for a file whose picture size is known, saving a probe.
bool forEachFrame(const QString& path, QSize size,
                  const std::function<void(int index, const QImage&)>& visit);

// The presentation time of every frame of the first video stream, in seconds, in file order.
std::vector<double> framePtsSeconds(const QString& path);
// The places of the key frames among the first video stream's packets, in file order.
std::vector<int> keyFrameIndices(const QString& path);

} // namespace ravelcue::test
