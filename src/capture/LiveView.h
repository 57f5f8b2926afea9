#pragma once

#include <array>
#include <string_view>

#include <QObject>
#include <QPoint>

class QFrame;
class QWidget;

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::capture {

// The live cameras: the four panes picCapture_0..3 with their capture pictures, connecting an
// instance to its device, and the choice between one camera and all four. UI thread only.
class LiveView : public QObject {
    Q_OBJECT
public:
    LiveView(ui::WindowContext& context, QWidget* client);

    QFrame* pane(int camera) const { return panes_.at(static_cast<size_t>(camera)); }

    // Reconnects the instance of a camera position to a device with the size and rate of its
    // settings. Failures are not reported: the pane simply stays empty.
    void ConnectCam(int camera, int deviceIndex, std::string_view captureMode);
    // 0..3 disconnects that instance, 4 all four in order; anything else does nothing.
    void DisConnectCam(int camera);

    // The camera options: 0..3 shows that camera alone, 4 shows all four.
    void optCamSelect_Click(int index);
    // A double click on a camera's picture toggles between one camera and all four.
    void PictureDoubleClick(int camera);

    // Asks the window to set optCamSelect(index), as a click would.
    void requestCameraOption(int index) { emit cameraOptionRequested(index); }

    // Copies the panes' and pictures' geometry from the layout onto the widgets.
    void applyGeometry();

signals:
    // The window sets optCamSelect(index); its handler runs when the option was not already set.
    void cameraOptionRequested(int index);
    void popupRequested(const QPoint& globalPosition);

private:
    ui::WindowContext& context_;
    std::array<QFrame*, 4> panes_{};
};

} // namespace ravelcue::capture
