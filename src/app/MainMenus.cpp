#include "MainMenus.h"

#include "platform/ui/Controls.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace ravelcue::app {

namespace {

QAction* named(QAction* action, const QString& name) {
    action->setObjectName(name);
    return action;
}

QMenu* submenu(QMenu* parent, const QString& name, const QString& title) {
    QMenu* menu = parent->addMenu(title);
    menu->setObjectName(name);
    menu->menuAction()->setObjectName(name);
    return menu;
}

} // namespace

MainMenus MainMenus::build(QMainWindow& window) {
    MainMenus m;
    QMenuBar* bar = window.menuBar();
    m.mnuExit = named(bar->addAction(QStringLiteral("Exit")), QStringLiteral("mnuExit"));
    m.mnuSetup = named(bar->addAction(QStringLiteral("Setup")), QStringLiteral("mnuSetup"));
    m.mnHelp = bar->addMenu(QStringLiteral("Help"));
    m.mnHelp->setObjectName(QStringLiteral("mnHelp"));
    m.mnHelp->menuAction()->setObjectName(QStringLiteral("mnHelp"));
    m.mnuContents =
        named(m.mnHelp->addAction(QStringLiteral("Contents")), QStringLiteral("mnuContents"));
    m.mnuContents->setShortcut(QKeySequence(Qt::Key_F1));
    // F1 of the main window; every dialog has its own F1 for its own topic, which a shortcut
    // for the whole application would make ambiguous.
    m.mnuContents->setShortcutContext(Qt::WindowShortcut);
    m.mnHelp->addSeparator();
    m.mnuWebSite = named(m.mnHelp->addAction(QStringLiteral("Ravelcue Website")),
                         QStringLiteral("mnuWebSite"));
    m.mnuUpdateCheck = named(m.mnHelp->addAction(QStringLiteral("Check for Update")),
                             QStringLiteral("mnuUpdateCheck"));
    m.mnHelp->addSeparator();
    m.mnuAbout = named(m.mnHelp->addAction(QStringLiteral("About")), QStringLiteral("mnuAbout"));

    m.mnuPopup = new QMenu(&window);
    m.mnuPopup->setObjectName(QStringLiteral("mnuPopup"));
    m.mnuCaptureImage = named(m.mnuPopup->addAction(QStringLiteral("Capture Single Image")),
                              QStringLiteral("mnuCaptureImage"));
    m.mnuCaptureSet = named(m.mnuPopup->addAction(QStringLiteral("Capture Image Set")),
                            QStringLiteral("mnuCaptureSet"));
    m.mnuPopup->addSeparator();
    m.mnuSaveVideo = named(m.mnuPopup->addAction(QStringLiteral("Save Video with Markups")),
                           QStringLiteral("mnuSaveVideo"));
    m.mnuPopup->addSeparator();
    // "&&" shows a single ampersand in a menu.
    m.mnuZoomPan =
        named(m.mnuPopup->addAction(QStringLiteral("Zoom && Pan")), QStringLiteral("mnuZoomPan"));
    m.mnuPopup->addSeparator();
    m.mnuGridControl =
        submenu(m.mnuPopup, QStringLiteral("mnuGridControl"), QStringLiteral("Grid Control"));
    const QStringList grids{QStringLiteral("Coarse"), QStringLiteral("Medium"),
                            QStringLiteral("Fine"), QStringLiteral("Remove")};
    for (int i = 0; i < 4; ++i) {
        m.mnuGrid[static_cast<size_t>(i)] = named(m.mnuGridControl->addAction(grids[i]),
                                                  ui::indexedName(QStringLiteral("mnuGrid"), i));
    }
    m.mnuPopup->addSeparator();
    m.mnuCameraSelect =
        submenu(m.mnuPopup, QStringLiteral("mnuCameraSelect"), QStringLiteral("Camera Select"));
    m.mnuPlayerSelect =
        submenu(m.mnuPopup, QStringLiteral("mnuPlayerSelect"), QStringLiteral("Player Select"));
    for (int i = 0; i < 5; ++i) {
        const auto k = static_cast<size_t>(i);
        const QString caption = i == 4 ? QStringLiteral("All") : QString::number(i + 1);
        m.mnuCamera[k] = named(m.mnuCameraSelect->addAction(caption),
                               ui::indexedName(QStringLiteral("mnuCamera"), i));
        m.mnuPlayer[k] =
            named(m.mnuPlayerSelect->addAction(i == 4 ? QStringLiteral("ALL") : caption),
                  ui::indexedName(QStringLiteral("mnuPlayer"), i));
        if (i < 4) {
            m.mnuCamera[k]->setEnabled(false);
        }
    }
    return m;
}

} // namespace ravelcue::app
