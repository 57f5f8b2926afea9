#include "Ffprobe.h"

#include <cstring>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace ravelcue::test {

VideoProbe probeVideo(const QString& path) {
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                   QStringLiteral("v:0"), QStringLiteral("-count_frames"),
                   QStringLiteral("-show_entries"),
                   QStringLiteral("stream=codec_name,width,height,nb_read_frames,avg_frame_rate:"
                                  "format=format_name,duration"),
                   QStringLiteral("-of"), QStringLiteral("json"), path});
    VideoProbe probe;
    if (!ffprobe.waitForFinished(-1) || ffprobe.exitCode() != 0) {
        return probe;
    }
    const QJsonObject root = QJsonDocument::fromJson(ffprobe.readAllStandardOutput()).object();
    const QJsonArray streams = root.value(QStringLiteral("streams")).toArray();
    if (streams.isEmpty()) {
        return probe;
    }
    const QJsonObject stream = streams.first().toObject();
    const QJsonObject format = root.value(QStringLiteral("format")).toObject();
    probe.formatName = format.value(QStringLiteral("format_name")).toString();
    probe.durationSeconds = format.value(QStringLiteral("duration")).toString().toDouble();
    probe.codecName = stream.value(QStringLiteral("codec_name")).toString();
    probe.width = stream.value(QStringLiteral("width")).toInt();
    probe.height = stream.value(QStringLiteral("height")).toInt();
    probe.frameCount = stream.value(QStringLiteral("nb_read_frames")).toString().toInt();
    probe.errors = QString::fromLocal8Bit(ffprobe.readAllStandardError()).trimmed();
    const QStringList rate =
        stream.value(QStringLiteral("avg_frame_rate")).toString().split(QLatin1Char('/'));
    if (rate.size() == 2 && rate[1].toDouble() != 0) {
        probe.frameRate = rate[0].toDouble() / rate[1].toDouble();
    }
    probe.ok = true;
    return probe;
}

bool forEachFrame(const QString& path, const std::function<void(int index, const QImage&)>& visit) {
    const VideoProbe probe = probeVideo(path);
    if (!probe.ok || probe.width <= 0 || probe.height <= 0) {
        return false;
    }
    return forEachFrame(path, QSize(probe.width, probe.height), visit);
}

bool forEachFrame(const QString& path, QSize size,
                  const std::function<void(int index, const QImage&)>& visit) {
    if (size.isEmpty()) {
        return false;
    }
    QProcess ffmpeg;
    // passthrough: one picture out for each frame in the file, whatever the timestamps say.
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), path,
                  QStringLiteral("-map"), QStringLiteral("0:v:0"), QStringLiteral("-fps_mode"),
                  QStringLiteral("passthrough"), QStringLiteral("-f"), QStringLiteral("rawvideo"),
                  QStringLiteral("-pix_fmt"), QStringLiteral("rgb24"), QStringLiteral("-")});
    const qsizetype frameBytes = qsizetype(size.width()) * size.height() * 3;
    QByteArray pending;
    int index = 0;
    auto deliver = [&] {
        while (pending.size() >= frameBytes) {
            QImage image(size, QImage::Format_RGB888);
            for (int y = 0; y < size.height(); ++y) {
                std::memcpy(image.scanLine(y),
                            pending.constData() + qsizetype(y) * size.width() * 3,
                            size_t(size.width()) * 3);
            }
            pending.remove(0, frameBytes);
            visit(index++, image);
        }
    };
    while (ffmpeg.state() != QProcess::NotRunning || ffmpeg.bytesAvailable() > 0) {
        ffmpeg.waitForReadyRead(1000);
        pending += ffmpeg.readAllStandardOutput();
        deliver();
        if (ffmpeg.state() == QProcess::NotRunning && ffmpeg.bytesAvailable() == 0) {
            break;
        }
    }
    ffmpeg.waitForFinished(-1);
    pending += ffmpeg.readAllStandardOutput();
    deliver();
    return ffmpeg.exitStatus() == QProcess::NormalExit && ffmpeg.exitCode() == 0 &&
           pending.isEmpty();
}

namespace {

// One value a line for every frame or packet of the first video stream, in file order.
std::vector<QByteArray> streamEntries(const QString& path, const QString& entry) {
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                   QStringLiteral("v:0"), QStringLiteral("-show_entries"), entry,
                   QStringLiteral("-of"), QStringLiteral("csv=p=0"), path});
    std::vector<QByteArray> values;
    if (!ffprobe.waitForFinished(-1) || ffprobe.exitCode() != 0) {
        return values;
    }
    for (const QByteArray& line : ffprobe.readAllStandardOutput().split('\n')) {
        if (!line.trimmed().isEmpty()) {
            values.push_back(line.trimmed());
        }
    }
    return values;
}

} // namespace

std::vector<double> framePtsSeconds(const QString& path) {
    std::vector<double> times;
    for (const QByteArray& value : streamEntries(path, QStringLiteral("frame=pts_time"))) {
        times.push_back(value.toDouble());
    }
    return times;
}

std::vector<int> keyFrameIndices(const QString& path) {
    std::vector<int> keys;
    const std::vector<QByteArray> flags = streamEntries(path, QStringLiteral("packet=flags"));
    for (size_t i = 0; i < flags.size(); ++i) {
        if (flags[i].startsWith('K')) {
            keys.push_back(static_cast<int>(i));
        }
    }
    return keys;
}

} // namespace ravelcue::test
