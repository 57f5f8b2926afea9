#include "BenchSupport.h"
#include "platform/media/OverlayLayer.h"
#include "platform/media/ffmpeg/FfmpegRecompress.h"

#include <algorithm>
#include <cstdio>

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QPainter>

namespace ravelcue::bench {

namespace {

using media::OverlayLayer;
using media::TextOverlay;
using media::ffmpeg::FfmpegRecompress;

// What a player marks up: a measuring line, a box, an ellipse, and two notes.
QImage shapeLayer() {
    QImage bitmap(640, 480, QImage::Format_RGB32);
    bitmap.fill(Qt::black);
    QPainter painter(&bitmap);
    painter.setPen(QPen(QColor(255, 0, 0), 3));
    painter.drawLine(100, 100, 300, 140);
    painter.setPen(QPen(QColor(0, 255, 0), 2));
    painter.drawRect(350, 200, 150, 120);
    painter.setPen(QPen(QColor(255, 255, 0), 2));
    painter.drawEllipse(QPoint(200, 350), 60, 30);
    return bitmap;
}

const TextOverlay kFirstNote{QStringLiteral("Break 1: cue ball"), 40, 40,
                             QStringLiteral("Arial Bold"),        12, Qt::yellow};
const TextOverlay kSecondNote{QStringLiteral("42.5 degrees"), 360, 330,
                              QStringLiteral("Arial Bold"),   12,  Qt::white};

double timeOurs(const QString& source, const QString& destination) {
    FfmpegRecompress recompress(0);
    recompress.SetBitmapOverlay(shapeLayer());
    for (const auto& [slot, note] : {std::pair{0, kFirstNote}, std::pair{1, kSecondNote}}) {
        recompress.SetTextOverlay(slot, note.text, note.x, note.y, note.font, note.pointSize,
                                  note.color);
    }
    QEventLoop loop;
    media::MediaError result;
    QObject::connect(&recompress, &FfmpegRecompress::finished, &loop,
                     [&](int, media::MediaError error) {
                         result = error;
                         loop.quit();
                     });
    const auto start = Clock::now();
    recompress.Recompress(source, destination, 0, 0);
    loop.exec();
    const double ms = msSince(start);
    if (!result.ok()) {
        std::printf("  our re-encode failed: %s\n", qPrintable(result.text));
        return -1;
    }
    return ms;
}

double timeFfmpeg(const QString& source, const QString& png, const QString& destination) {
    const auto start = Clock::now();
    const bool ok = runFfmpeg({"-i", source, "-i", png, "-filter_complex", "[0:v][1:v]overlay=0:0",
                               "-c:v", "mjpeg", "-q:v", "4", destination});
    return ok ? msSince(start) : -1;
}

} // namespace

int runBurnInBench(const QString& folder) {
    const QDir dir(folder);
    const QString source = dir.filePath(QStringLiteral("sd.avi"));
    if (!QFileInfo::exists(source) &&
        !runFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=640x480:rate=30:duration=60", "-c:v",
                    "mjpeg", "-q:v", "4", source})) {
        std::printf("ffmpeg could not make the media\n");
        return 1;
    }
    // The peer gets the very same markups, composed once into a PNG with transparency.
    OverlayLayer layer;
    layer.setBitmap(shapeLayer());
    layer.setText(0, kFirstNote);
    layer.setText(1, kSecondNote);
    const QString png = dir.filePath(QStringLiteral("markups.png"));
    layer.composed(QSize(640, 480)).convertToFormat(QImage::Format_ARGB32).save(png);

    std::printf(
        "\nBurning a bitmap and two texts into 60 s of 640x480 MJPEG (1800 frames), MJPEG out, "
        "quantiser 4 on both sides:\n");
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int run = 0; run < 2; ++run) {
        ours.push_back(timeOurs(source, dir.filePath(QStringLiteral("ours+.avi"))));
        theirs.push_back(timeFfmpeg(source, png, dir.filePath(QStringLiteral("theirs+.avi"))));
        std::printf("  run %d: Ravelcue %.0f ms, ffmpeg -filter_complex overlay %.0f ms\n", run + 1,
                    ours.back(), theirs.back());
        std::fflush(stdout);
    }
    if (*std::min_element(ours.begin(), ours.end()) < 0 ||
        *std::min_element(theirs.begin(), theirs.end()) < 0) {
        return 1;
    }
    const double best = *std::min_element(ours.begin(), ours.end());
    const double peer = *std::min_element(theirs.begin(), theirs.end());
    const double ratio = best / peer;
    std::printf("  best of two: Ravelcue %.0f ms, ffmpeg %.0f ms, ratio %.2f  %s (at most 1.00)\n",
                best, peer, ratio, ratio <= 1.0 ? "[target met]" : "[TARGET MISSED]");
    return 0;
}

} // namespace ravelcue::bench
