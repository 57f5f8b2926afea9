#include "HelpWindow.h"

#include <QFile>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <QWidget>

namespace ravelcue::ui {

namespace {
constexpr int kContentsTopic = 10;
}

HelpWindow::HelpWindow() = default;

HelpWindow::~HelpWindow() {
    delete window_.data();
}

QUrl HelpWindow::topicUrl(int topic) {
    return QUrl(QStringLiteral("qrc:/help/%1.html").arg(topic));
}

bool HelpWindow::hasTopic(int topic) {
    return QFile::exists(QStringLiteral(":/help/%1.html").arg(topic));
}

void HelpWindow::load() {
    // A window of its own, not owned by a dialog, so that a modal dialog's help stays usable and
    // the help stays open when the dialog closes.
    auto* window = new QWidget(nullptr, Qt::Window);
    window->setObjectName(QStringLiteral("frmHelp"));
    window->setWindowTitle(QStringLiteral("Ravelcue Help"));
    txtHelp_ = new QTextBrowser(window);
    txtHelp_->setObjectName(QStringLiteral("txtHelp"));
    txtHelp_->setOpenLinks(true);
    txtHelp_->setOpenExternalLinks(false);
    auto* cmdContents = new QPushButton(QStringLiteral("Contents"), window);
    cmdContents->setObjectName(QStringLiteral("cmdContents"));
    auto* cmdBack = new QPushButton(QStringLiteral("Back"), window);
    cmdBack->setObjectName(QStringLiteral("cmdBack"));
    cmdBack->setEnabled(false);
    QObject::connect(cmdContents, &QPushButton::clicked, window,
                     [this] { txtHelp_->setSource(topicUrl(kContentsTopic)); });
    QObject::connect(cmdBack, &QPushButton::clicked, txtHelp_, &QTextBrowser::backward);
    QObject::connect(txtHelp_, &QTextBrowser::backwardAvailable, cmdBack, &QPushButton::setEnabled);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdContents);
    buttons->addWidget(cmdBack);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(window);
    layout->addLayout(buttons);
    layout->addWidget(txtHelp_);
    window->resize(620, 520);
    window_ = window;
}

void HelpWindow::showTopic(int topic) {
    if (!window_) {
        load();
    }
    if (hasTopic(topic)) {
        txtHelp_->setSource(topicUrl(topic));
    } else {
        txtHelp_->setHtml(QStringLiteral("<h2>Ravelcue Help</h2><p>There is no help topic %1. "
                                         "<a href=\"%2\">Contents</a></p>")
                              .arg(topic)
                              .arg(topicUrl(kContentsTopic).toString()));
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
}

QUrl HelpWindow::source() const {
    return window_ ? txtHelp_->source() : QUrl();
}

} // namespace ravelcue::ui
