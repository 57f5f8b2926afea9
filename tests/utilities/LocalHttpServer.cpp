#include "LocalHttpServer.h"

#include <QTcpSocket>

namespace ravelcue::test {

LocalHttpServer::LocalHttpServer(QByteArray body, Mode mode)
    : body_(std::move(body))
    , mode_(mode) {
    server_.listen(QHostAddress::LocalHost);
    connect(&server_, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = server_.nextPendingConnection()) {
            socket->setParent(this);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
        }
    });
}

QString LocalHttpServer::downloadUrl() const {
    return QStringLiteral("http://127.0.0.1:%1/downloads/").arg(server_.serverPort());
}

void LocalHttpServer::serve(QTcpSocket* socket) {
    // The request may come in pieces; it is whole at its empty line.
    const QByteArray request = socket->property("request").toByteArray() + socket->readAll();
    socket->setProperty("request", request);
    if (!request.contains("\r\n\r\n") || socket->property("served").toBool()) {
        return;
    }
    socket->setProperty("served", true);
    requests_ << QString::fromLatin1(request.split(' ').value(1));
    if (mode_ == Mode::Silent) {
        return;
    }
    socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nConnection: close\r\n"
                  "Content-Length: " +
                  QByteArray::number(body_.size()) + "\r\n\r\n" + body_);
    socket->disconnectFromHost();
}

QString closedDownloadUrl() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    const quint16 port = probe.serverPort();
    probe.close();
    return QStringLiteral("http://127.0.0.1:%1/downloads/").arg(port);
}

} // namespace ravelcue::test
