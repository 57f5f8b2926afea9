#pragma once

#include <memory>

#include <QLockFile>
#include <QObject>
#include <QString>

class QLocalServer;

namespace ravelcue::ui {

// One running instance per user: the first start holds a lock and listens; a later start finds
// the lock, asks the first to raise its window, and goes away. UI thread only.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    // key names the lock and the channel; the lock file lies in lockFolder.
    SingleInstance(const QString& key, const QString& lockFolder, QObject* parent = nullptr);
    ~SingleInstance() override;

    // True when no other instance runs; this one then keeps the lock and listens for others.
    bool claim();
    // Asks the running instance to raise its window; true when it answered.
    bool askRunningToRaise(int timeoutMs = 2000) const;

    // The default key for this user.
    static QString defaultKey();

signals:
    void raiseRequested();

private:
    QString key_;
    QLockFile lock_;
    std::unique_ptr<QLocalServer> server_;
};

} // namespace ravelcue::ui
