#include "FrameIndexCache.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace ravelcue::media::ffmpeg {

namespace {

constexpr quint32 kMagic = 0x52434649; // "RCFI"
constexpr quint32 kVersion = 1;
constexpr QDataStream::Version kStreamVersion = QDataStream::Qt_6_0;
// Bytes a packet takes in an entry: three stamps and a flag byte.
constexpr qint64 kPacketBytes = 3 * 8 + 1;

struct FileKey {
    QString path;
    qint64 size = -1;
    qint64 modifiedMs = 0;
};

FileKey keyOf(const QString& videoPath) {
    const QFileInfo info(videoPath);
    return {info.absoluteFilePath(), info.size(), info.lastModified().toMSecsSinceEpoch()};
}

QByteArray checksum(const QByteArray& body) {
    return QCryptographicHash::hash(body, QCryptographicHash::Sha1);
}

} // namespace

FrameIndexCache::FrameIndexCache(QString folder, qint64 budgetBytes)
    : folder_(std::move(folder))
    , budgetBytes_(budgetBytes) {}

QString FrameIndexCache::entryPath(const QString& videoPath) const {
    const QByteArray name =
        QCryptographicHash::hash(keyOf(videoPath).path.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QDir(folder_).filePath(QString::fromLatin1(name) + QStringLiteral(".frames"));
}

std::optional<IndexPackets> FrameIndexCache::load(const QString& videoPath) const {
    QFile file(entryPath(videoPath));
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray whole = file.readAll();
    QDataStream head(whole);
    head.setVersion(kStreamVersion);
    quint32 magic = 0;
    quint32 version = 0;
    QByteArray sum;
    QByteArray body;
    head >> magic >> version >> sum >> body;
    if (head.status() != QDataStream::Ok || !head.atEnd() || magic != kMagic ||
        version != kVersion || sum != checksum(body)) {
        return std::nullopt;
    }
    QDataStream in(body);
    in.setVersion(kStreamVersion);
    const FileKey key = keyOf(videoPath);
    FileKey stored;
    IndexPackets packets;
    qint64 count = 0;
    in >> stored.path >> stored.size >> stored.modifiedMs >> packets.timeBase.num >>
        packets.timeBase.den >> packets.frameRate.num >> packets.frameRate.den >>
        packets.outputDelay >> count;
    if (in.status() != QDataStream::Ok || stored.path != key.path || stored.size != key.size ||
        stored.modifiedMs != key.modifiedMs || packets.timeBase.num <= 0 ||
        packets.timeBase.den <= 0 || count <= 0 ||
        count > (body.size() - in.device()->pos()) / kPacketBytes) {
        return std::nullopt;
    }
    packets.packets.resize(static_cast<size_t>(count));
    for (FrameIndex::Packet& packet : packets.packets) {
        qint64 pts = 0;
        qint64 dts = 0;
        qint64 duration = 0;
        quint8 flags = 0;
        in >> pts >> dts >> duration >> flags;
        packet = {pts, dts, duration, (flags & 1) != 0, (flags & 2) != 0};
    }
    if (in.status() != QDataStream::Ok || !in.atEnd()) {
        return std::nullopt;
    }
    // Used now: the budget pushes out entries used longer ago first.
    file.setFileTime(QDateTime::currentDateTimeUtc(), QFileDevice::FileModificationTime);
    return packets;
}

bool FrameIndexCache::store(const QString& videoPath, const IndexPackets& packets) const {
    if (folder_.isEmpty() || !QDir().mkpath(folder_)) {
        return false;
    }
    QByteArray body;
    {
        QDataStream out(&body, QIODevice::WriteOnly);
        out.setVersion(kStreamVersion);
        const FileKey key = keyOf(videoPath);
        out << key.path << key.size << key.modifiedMs << packets.timeBase.num
            << packets.timeBase.den << packets.frameRate.num << packets.frameRate.den
            << packets.outputDelay << static_cast<qint64>(packets.packets.size());
        for (const FrameIndex::Packet& packet : packets.packets) {
            out << static_cast<qint64>(packet.pts) << static_cast<qint64>(packet.dts)
                << static_cast<qint64>(packet.duration)
                << static_cast<quint8>((packet.keyframe ? 1 : 0) | (packet.discard ? 2 : 0));
        }
    }
    QSaveFile file(entryPath(videoPath));
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QDataStream out(&file);
    out.setVersion(kStreamVersion);
    out << kMagic << kVersion << checksum(body) << body;
    if (out.status() != QDataStream::Ok || !file.commit()) {
        return false;
    }
    trimTo(entryPath(videoPath));
    return true;
}

void FrameIndexCache::trimTo(const QString& kept) const {
    const QFileInfoList entries =
        QDir(folder_).entryInfoList({QStringLiteral("*.frames")}, QDir::Files, QDir::Time);
    qint64 total = 0;
    for (const QFileInfo& entry : entries) { // newest first
        total += entry.size();
        if (total > budgetBytes_ &&
            entry.absoluteFilePath() != QFileInfo(kept).absoluteFilePath()) {
            QFile::remove(entry.absoluteFilePath());
            total -= entry.size();
        }
    }
}

} // namespace ravelcue::media::ffmpeg
