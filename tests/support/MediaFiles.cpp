#include "MediaFiles.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace ravelcue::test {

namespace {

QByteArray runTool(const QString& program, const QStringList& arguments, bool* ok) {
    QProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start(program, arguments);
    const bool finished = process.waitForFinished(-1);
    *ok = finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return process.readAllStandardOutput();
}

} // namespace

bool runFfmpeg(const QStringList& arguments) {
    bool ok = false;
    runTool(QStringLiteral("ffmpeg"), QStringList{"-nostdin", "-v", "error", "-y"} + arguments,
            &ok);
    return ok;
}

bool makeVideo(const QString& path, const QString& lavfiSource, const QStringList& encoding) {
    return runFfmpeg(QStringList{"-f", "lavfi", "-i", lavfiSource} + encoding + QStringList{path});
}

std::vector<QImage> extractFrames(const QString& path, const std::vector<int>& numbers) {
    QTemporaryDir folder;
    QStringList terms;
    std::vector<int> sorted = numbers;
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    for (const int number : sorted) {
        terms << QStringLiteral("eq(n\\,%1)").arg(number);
    }
    const QString pattern = QDir(folder.path()).filePath(QStringLiteral("frame%04d.png"));
    if (!runFfmpeg({"-i", path, "-vf", QStringLiteral("select=%1").arg(terms.join('+')),
                    "-fps_mode", "passthrough", "-pix_fmt", "rgb24", pattern})) {
        return {};
    }
    std::vector<QImage> result;
    for (const int number : numbers) {
        const auto position = std::find(sorted.begin(), sorted.end(), number) - sorted.begin();
        const QImage image(
            QDir(folder.path())
                .filePath(QStringLiteral("frame%1.png").arg(position + 1, 4, 10, QChar('0'))));
        if (image.isNull()) {
            return {};
        }
        result.push_back(image.convertToFormat(QImage::Format_RGB32));
    }
    return result;
}

QImage extractFrame(const QString& path, int number) {
    std::vector<QImage> frames = extractFrames(path, {number});
    return frames.empty() ? QImage() : frames.front();
}

std::vector<double> frameTimesMs(const QString& path) {
    bool ok = false;
    const QByteArray out = runTool(QStringLiteral("ffprobe"),
                                   {"-v", "error", "-select_streams", "v:0", "-show_entries",
                                    "frame=best_effort_timestamp_time", "-of", "csv=p=0", path},
                                   &ok);
    std::vector<double> times;
    for (const QByteArray& line : out.split('\n')) {
        const QByteArray field = line.split(',').front().trimmed(); // side data may follow
        if (field.isEmpty()) {
            continue;
        }
        bool number = false;
        const double seconds = field.toDouble(&number);
        if (number) {
            times.push_back(seconds * 1000.0);
        } else if (times.size() >= 2) {
            // AVI stores no stamps; ffprobe guesses none for the frames the decoder flushes last.
            times.push_back(2 * times.back() - times[times.size() - 2]);
        }
    }
    if (!times.empty()) {
        const double first = times.front();
        for (double& time : times) {
            time -= first;
        }
    }
    return times;
}

std::vector<int> keyframeNumbers(const QString& path) {
    bool ok = false;
    const QByteArray out = runTool(QStringLiteral("ffprobe"),
                                   {"-v", "error", "-select_streams", "v:0", "-show_entries",
                                    "frame=key_frame", "-of", "csv=p=0", path},
                                   &ok);
    std::vector<int> keyframes;
    int number = 0;
    for (const QByteArray& line : out.split('\n')) {
        const QByteArray field = line.split(',').front().trimmed();
        if (field.isEmpty()) {
            continue;
        }
        if (field == "1") {
            keyframes.push_back(number);
        }
        ++number;
    }
    return keyframes;
}

double soundSeconds(const QString& path) {
    bool ok = false;
    const QByteArray out = runTool(QStringLiteral("ffprobe"),
                                   {"-v", "error", "-select_streams", "a:0", "-show_entries",
                                    "packet=pts_time,duration_time", "-of", "csv=p=0", path},
                                   &ok);
    double first = -1;
    double end = 0;
    for (const QByteArray& line : out.split('\n')) {
        const QList<QByteArray> fields = line.trimmed().split(',');
        if (fields.size() < 2) {
            continue;
        }
        const double pts = fields[0].toDouble();
        if (first < 0) {
            first = pts;
        }
        end = std::max(end, pts + fields[1].toDouble());
    }
    return first < 0 ? 0.0 : end - first;
}

double meanDifference(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull()) {
        return 1000.0;
    }
    const QImage left = a.convertToFormat(QImage::Format_RGB32);
    const QImage right = b.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    for (int y = 0; y < left.height(); ++y) {
        const auto* l = reinterpret_cast<const QRgb*>(left.constScanLine(y));
        const auto* r = reinterpret_cast<const QRgb*>(right.constScanLine(y));
        for (int x = 0; x < left.width(); ++x) {
            sum += std::abs(qRed(l[x]) - qRed(r[x])) + std::abs(qGreen(l[x]) - qGreen(r[x])) +
                   std::abs(qBlue(l[x]) - qBlue(r[x]));
        }
    }
    return sum / (3.0 * left.width() * left.height());
}

} // namespace ravelcue::test
