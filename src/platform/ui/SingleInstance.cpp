#include "SingleInstance.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

namespace ravelcue::ui {

namespace {
constexpr char kRaiseMessage[] = "raise\n";
}

SingleInstance::SingleInstance(const QString& key, const QString& lockFolder, QObject* parent)
    : QObject(parent)
    , key_(key)
    , lock_(QDir(lockFolder).filePath(key + QStringLiteral(".lock"))) {
    // A lock left by a crashed instance is stale at once: the lock records the holder's process.
    lock_.setStaleLockTime(0);
}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::defaultKey() {
    QString user = qEnvironmentVariable("USER");
    if (user.isEmpty()) {
        user = qEnvironmentVariable("USERNAME");
    }
    return QStringLiteral("Ravelcue-") + user;
}

bool SingleInstance::claim() {
    if (!lock_.tryLock(0)) {
        return false;
    }
    server_ = std::make_unique<QLocalServer>();
    QLocalServer::removeServer(key_);
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    if (server_->listen(key_)) {
        connect(server_.get(), &QLocalServer::newConnection, this, [this] {
            while (QLocalSocket* socket = server_->nextPendingConnection()) {
                connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                    if (socket->readAll().startsWith("raise")) {
                        emit raiseRequested();
                    }
                    socket->disconnectFromServer();
                });
                connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    return true;
}

bool SingleInstance::askRunningToRaise(int timeoutMs) const {
    QLocalSocket socket;
    socket.connectToServer(key_);
    if (!socket.waitForConnected(timeoutMs)) {
        return false;
    }
    socket.write(kRaiseMessage);
    const bool written = socket.waitForBytesWritten(timeoutMs);
    socket.disconnectFromServer();
    return written;
}

} // namespace ravelcue::ui
