#include "PlayerPanes.h"

#include "core/AppSettings.h"
#include "core/PaneLayout.h"
#include "platform/media/MediaInstances.h"
#include "platform/media/VideoView.h"
#include "platform/ui/Controls.h"
#include "platform/ui/WindowContext.h"

#include <QFrame>

namespace ravelcue::playback {

PlayerPanes::PlayerPanes(ui::WindowContext& context, QWidget* client)
    : QObject(client)
    , context_(context) {
    for (int i = 0; i < 4; ++i) {
        QFrame* pane = ui::makeFrame(client, ui::indexedName(QStringLiteral("picPlayer"), i),
                                     QRect(kPaneColumn, 0, 800, 600));
        pane->setStyleSheet(
            QStringLiteral("QFrame#%1 { background: black; }").arg(pane->objectName()));
        pane->hide();
        panes_[static_cast<size_t>(i)] = pane;
        media::VideoView* view = context_.media.play(i).view();
        view->setParent(pane);
        view->setObjectName(ui::indexedName(QStringLiteral("VideoCapXPlayer"), i));
        view->setGeometry(0, 0, 800, 600);
        view->show();
    }
}

void PlayerPanes::applyGeometry() {
    const PaneGeometry& geometry = context_.geometry;
    for (size_t i = 0; i < panes_.size(); ++i) {
        const PaneRect& pane = geometry.picPlayer[i];
        panes_[i]->setGeometry(pane.left, pane.top, pane.width, pane.height);
        media::VideoView* view = context_.media.play(static_cast<int>(i)).view();
        // Player i shows camera i's member of a Set, whatever file it holds.
        view->setToolTip(QString::fromStdString(context_.settings.CamNickname[i]));
        const PaneRect& fitted = geometry.playerVideo[i];
        if (fitted.width > 0 && fitted.height > 0) {
            view->setGeometry(fitted.left, fitted.top, fitted.width, fitted.height);
        }
    }
}

} // namespace ravelcue::playback
