#pragma once

#include <sys/types.h>

#include <QSize>
#include <QString>

namespace ravelcue::test {

// An Xvfb server of the test's own, on a display number it picks itself. Its screen, plain white,
// is a source of pictures for libavdevice's x11grab on a machine without a camera. UI thread only.
class PrivateXServer {
public:
    explicit PrivateXServer(QSize screen);
    ~PrivateXServer();
    PrivateXServer(const PrivateXServer&) = delete;
    PrivateXServer& operator=(const PrivateXServer&) = delete;

    // False when Xvfb isn't installed or didn't come up.
    bool running() const { return server_ > 0; }
    // ":N", what x11grab opens.
    QString display() const { return display_; }
    // Ends the server at once, as pulling a camera's cable ends its pictures.
    void kill();

private:
    pid_t server_ = 0;
    QString display_;
};

} // namespace ravelcue::test
