#include "UpdateCheck.h"

#include "UpdateInfo.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Desktop.h"
#include "platform/ui/HelpWindow.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/StatusPopup.h"

#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTimer>

namespace ravelcue::utilities {

namespace {

constexpr int kHelpTopic = 180;

QLineEdit* readOnlyField(QWidget* parent, const QString& name, const QString& toolTip) {
    auto* field = new QLineEdit(parent);
    field->setObjectName(name);
    field->setToolTip(toolTip);
    field->setReadOnly(true);
    return field;
}

} // namespace

UpdateCheck::UpdateCheck(UpdateCheckOptions options, ui::Prompts& prompts, ui::StatusPopup& popup,
                         ui::HelpWindow& help, ui::Desktop& desktop, QWidget* parent)
    : QDialog(parent)
    , options_(std::move(options))
    , prompts_(prompts)
    , popup_(popup)
    , desktop_(desktop)
    , network_(new QNetworkAccessManager(this))
    , giveUp_(new QTimer(this)) {
    setObjectName(QStringLiteral("frmUpdateCheck"));
    setWindowTitle(QStringLiteral("Update Check"));
    giveUp_->setSingleShot(true);
    connect(giveUp_, &QTimer::timeout, this, [this] {
        if (reply_) {
            reply_->abort();
        }
    });

    txtCurrentVersion_ = readOnlyField(this, QStringLiteral("txtCurrentVersion"),
                                       QStringLiteral("Version of current software"));
    txtAvailableUpdate_ = readOnlyField(this, QStringLiteral("txtAvailableUpdate"),
                                        QStringLiteral("Version of update"));
    txtInformation_ = new QPlainTextEdit(this);
    txtInformation_->setObjectName(QStringLiteral("txtInformation"));
    txtInformation_->setReadOnly(true);
    QLabel* label4 =
        ui::makeDialogLabel(this, QStringLiteral("Label4"),
                            QStringLiteral("For complete update information on all versions, "
                                           "see the \"What's New\" page on the Ravelcue "
                                           "website."));
    label4->setWordWrap(true);
    cmdDownLoad_ = ui::makeDialogButton(this, QStringLiteral("cmdDownLoad"),
                                        QStringLiteral("Download Updates"),
                                        QStringLiteral("Click to download update"));
    cmdDownLoad_->setEnabled(false);
    QPushButton* cmdOK = ui::makeDialogButton(this, QStringLiteral("cmdOK"), QStringLiteral("OK"));
    cmdOK->setDefault(true);
    QPushButton* cmdHelp =
        ui::makeDialogButton(this, QStringLiteral("cmdHelp"), QStringLiteral("Help"));

    auto* grid = new QGridLayout(this);
    grid->addWidget(
        ui::makeDialogLabel(this, QStringLiteral("Label3"), QStringLiteral("Current Version:")), 0,
        0);
    grid->addWidget(txtCurrentVersion_, 0, 1);
    grid->addWidget(
        ui::makeDialogLabel(this, QStringLiteral("Label2"), QStringLiteral("Available Update:")), 1,
        0);
    grid->addWidget(txtAvailableUpdate_, 1, 1);
    grid->addWidget(
        ui::makeDialogLabel(this, QStringLiteral("Label1"), QStringLiteral("Information:")), 2, 0,
        Qt::AlignTop);
    grid->addWidget(txtInformation_, 2, 1);
    grid->addWidget(label4, 3, 0, 1, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdDownLoad_);
    buttons->addStretch();
    buttons->addWidget(cmdHelp);
    buttons->addWidget(cmdOK);
    grid->addLayout(buttons, 4, 0, 1, 2);
    grid->setRowStretch(2, 1);

    connect(cmdDownLoad_, &QPushButton::clicked, this, &UpdateCheck::cmdDownLoad_Click);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::close);
    const auto showHelp = [&help] { help.showTopic(kHelpTopic); };
    connect(cmdHelp, &QPushButton::clicked, this, showHelp);
    connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this, showHelp);

    resize(480, 330);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        move(area.left() + (area.width() - width()) / 2,
             area.top() + (area.height() - height()) / 2);
    }
}

UpdateCheck::~UpdateCheck() {
    // Closed while reading: the popup of an interactive check must not outlive it.
    if (reply_ && interactive_) {
        popup_.ShowPopup(QString(), -1);
    }
    dropRead();
}

void UpdateCheck::dropRead() {
    giveUp_->stop();
    if (reply_) {
        reply_->disconnect(this);
        reply_->abort();
        reply_->deleteLater();
        reply_ = nullptr;
    }
}

void UpdateCheck::CheckUpdate(bool interactive) {
    dropRead();
    interactive_ = interactive;
    txtInformation_->clear();

    QNetworkRequest request(QUrl(options_.downloadUrl + QStringLiteral("app.txt")));
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("Ravelcue/") + options_.currentVersion);
    reply_ = network_->get(request);
    connect(reply_, &QNetworkReply::finished, this, &UpdateCheck::readFinished);
    giveUp_->start(options_.timeoutMs);

    if (interactive) {
        show();
        raise();
        popup_.ShowPopup(QStringLiteral("Checking for update....please standby"), 0);
    }
}

void UpdateCheck::readFinished() {
    giveUp_->stop();
    QString text;
    if (reply_) {
        if (reply_->error() == QNetworkReply::NoError) {
            text = QString::fromUtf8(reply_->readAll());
        }
        reply_->deleteLater();
        reply_ = nullptr;
    }

    const std::optional<AppText> app = parseAppText(text);
    bool newer = false;
    if (!app) {
        txtInformation_->setPlainText(QStringLiteral("Error Connecting to Ravelcue's Website!"));
    } else {
        txtCurrentVersion_->setText(options_.currentVersion);
        newer = isNewerVersion(app->version, options_.currentVersion);
        if (newer) {
            txtAvailableUpdate_->setText(app->version);
            dlWhat_ = options_.downloadUrl + QStringLiteral("RV.zip");
            cmdDownLoad_->setEnabled(true);
        } else {
            txtAvailableUpdate_->setText(QStringLiteral("No new version"));
            dlWhat_ = QStringLiteral("none");
        }
        txtInformation_->setPlainText(app->information);
    }

    if (interactive_) {
        popup_.ShowPopup(QString(), -1);
    } else if (newer) {
        prompts_.message(QStringLiteral("There is a new version of Ravelcue available."),
                         ui::MessageIcon::Information);
    }
    emit checkFinished();
}

void UpdateCheck::cmdDownLoad_Click() {
    if (dlWhat_ == QLatin1String("none")) {
        prompts_.message(QStringLiteral("You Are Up To Date!"), ui::MessageIcon::Information);
        return;
    }
    desktop_.openUrl(QUrl(dlWhat_));
}

} // namespace ravelcue::utilities
