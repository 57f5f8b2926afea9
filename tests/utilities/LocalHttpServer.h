#pragma once

#include <QByteArray>
#include <QObject>
#include <QStringList>
#include <QTcpServer>

class QTcpSocket;

namespace ravelcue::test {

// A web server on this machine for the update check: it answers every request with the same body,
// or, when told to stay silent, takes the request and never answers.
class LocalHttpServer final : public QObject {
    Q_OBJECT
public:
    enum class Mode { Answer, Silent };

    explicit LocalHttpServer(QByteArray body = {}, Mode mode = Mode::Answer);

    // "http://127.0.0.1:<port>/downloads/"
    QString downloadUrl() const;
    void setBody(QByteArray body) { body_ = std::move(body); }
    // The paths asked for, in order.
    const QStringList& requests() const { return requests_; }

private:
    void serve(QTcpSocket* socket);

    QTcpServer server_;
    QByteArray body_;
    Mode mode_;
    QStringList requests_;
};

// The address of a port on this machine where nothing listens.
QString closedDownloadUrl();

} // namespace ravelcue::test
