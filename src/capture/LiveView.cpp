#include "LiveView.h"

#include "core/AppSettings.h"
#include "core/AppState.h"
#include "core/ModeMachine.h"
#include "core/PaneLayout.h"
#include "core/TextNumbers.h"
#include "core/VideoSize.h"
#include "platform/media/MediaInstances.h"
#include "platform/media/VideoView.h"
#include "platform/ui/Controls.h"
#include "platform/ui/WindowContext.h"

#include <QCursor>
#include <QFrame>

namespace ravelcue::capture {

namespace {
QRect toRect(const PaneRect& r) {
    return {r.left, r.top, r.width, r.height};
}
} // namespace

LiveView::LiveView(ui::WindowContext& context, QWidget* client)
    : QObject(client)
    , context_(context) {
    for (int i = 0; i < 4; ++i) {
        QFrame* pane = ui::makeFrame(client, ui::indexedName(QStringLiteral("picCapture"), i),
                                     QRect(kPaneColumn, 0, 800, 600));
        pane->setStyleSheet(
            QStringLiteral("QFrame#%1 { background: black; }").arg(pane->objectName()));
        pane->hide();
        panes_[static_cast<size_t>(i)] = pane;

        media::VideoView* view = context_.media.cam(i).view();
        view->setParent(pane);
        view->setObjectName(ui::indexedName(QStringLiteral("VideoCapXCapture"), i));
        view->setGeometry(0, 0, 800, 600);
        view->show();
        connect(view, &media::VideoView::PictureDoubleClick, this,
                [this, i] { PictureDoubleClick(i); });
        connect(view, &media::VideoView::mousePressed, this,
                [this](int button, int, double, double) {
                    if (button == 2) {
                        emit popupRequested(QCursor::pos());
                    }
                });
    }
}

void LiveView::ConnectCam(int camera, int deviceIndex, std::string_view captureMode) {
    if (camera < 0 || camera > 3) {
        return;
    }
    const auto k = static_cast<size_t>(camera);
    media::CaptureInstance& instance = context_.media.cam(camera);
    instance.SetConnected(false);
    instance.SetVideoDevice(deviceIndex);
    instance.SetCaptureFrameRate(leadingNumber(context_.settings.FrameRate[k]));
    if (captureMode == "Fast") {
        instance.SetRenderMode(0);
    } else if (captureMode == "Slow") {
        instance.SetRenderMode(1);
    }
    instance.view()->resize(800, 600);
    instance.SetConnected(true);
    if (const auto size = parseVideoSize(context_.settings.VideoSize[k])) {
        instance.SetVideoSize(size->width, size->height);
    }
    instance.SetPreview(true);
    // The control was given its design size above; put it back where the layout wants it.
    const PaneRect& fitted = context_.geometry.captureVideo[k];
    if (fitted.width > 0 && fitted.height > 0) {
        instance.view()->setGeometry(toRect(fitted));
    }
}

void LiveView::DisConnectCam(int camera) {
    if (camera >= 0 && camera <= 3) {
        context_.media.cam(camera).SetConnected(false);
    } else if (camera == 4) {
        for (int i = 0; i < 4; ++i) {
            context_.media.cam(i).SetConnected(false);
        }
    }
}

void LiveView::optCamSelect_Click(int index) {
    AppState& state = context_.state;
    if (index >= 0 && index <= 3) {
        state.SelectedCam = index;
        state.CameraView = "SingleCamera";
        PlacePanes(context_.geometry, "SingleCamera");
    } else if (index == 4) {
        state.CameraView = "QuadCamera";
        PlacePanes(context_.geometry, "QuadCamera");
    } else {
        return;
    }
    context_.mode.UpdateView();
}

void LiveView::PictureDoubleClick(int camera) {
    if (context_.state.CameraView == "SingleCamera") {
        emit cameraOptionRequested(4);
    } else if (context_.state.CameraView == "QuadCamera") {
        emit cameraOptionRequested(camera);
    }
}

void LiveView::applyGeometry() {
    const PaneGeometry& geometry = context_.geometry;
    for (size_t i = 0; i < panes_.size(); ++i) {
        panes_[i]->setGeometry(toRect(geometry.picCapture[i]));
        const PaneRect& fitted = geometry.captureVideo[i];
        if (fitted.width > 0 && fitted.height > 0) {
            context_.media.cam(static_cast<int>(i)).view()->setGeometry(toRect(fitted));
        }
        context_.media.cam(static_cast<int>(i))
            .view()
            ->setToolTip(QString::fromStdString(context_.settings.CamNickname[i]));
    }
}

} // namespace ravelcue::capture
