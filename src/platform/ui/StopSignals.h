#pragma once

#include <memory>

#include <QObject>

class QSocketNotifier;

namespace ravelcue::ui {

// Turns the signals that ask a program to end (SIGTERM from a shutdown, SIGINT from Ctrl+C,
// SIGHUP from a closed terminal or a logout) into an ordinary Qt signal, so that the program
// stops the way its Exit command does instead of dying with its files half written. The signal
// handler only writes a byte into a socket pair; the notifier reads it on the UI thread.
// Holds the handlers while it lives; at most one at a time. Elsewhere than POSIX it does nothing.
class StopSignals : public QObject {
    Q_OBJECT
public:
    explicit StopSignals(QObject* parent = nullptr);
    ~StopSignals() override;

    // False when the handlers could not be put in place (the signals then keep their default).
    bool installed() const { return notifier_ != nullptr; }

signals:
    // A stop was asked for, by that signal number. Emitted once for every signal received.
    void stopRequested(int signalNumber);

private:
    void readSignals();

    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace ravelcue::ui
