#include "AboutDialog.h"

#include "platform/ui/Controls.h"
#include "platform/ui/Desktop.h"

#include <QDir>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace ravelcue::utilities {

namespace {

// A label that shows its text as a link and hands its target to the desktop when clicked.
QLabel* linkLabel(QWidget* parent, const QString& name, const QString& text, const QUrl& target,
                  ui::Desktop& desktop) {
    QLabel* label = ui::makeDialogLabel(
        parent, name,
        QStringLiteral("<a href=\"%1\">%2</a>")
            .arg(target.toString(QUrl::FullyEncoded).toHtmlEscaped(), text.toHtmlEscaped()));
    label->setTextFormat(Qt::RichText);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setOpenExternalLinks(false);
    label->setToolTip(target.toString());
    QObject::connect(label, &QLabel::linkActivated, parent,
                     [&desktop, target] { desktop.openUrl(target); });
    return label;
}

// The product's picture: a cue ball and the eight ball on the cloth.
QPixmap productPicture() {
    QPixmap picture(64, 64);
    picture.fill(Qt::transparent);
    QPainter paint(&picture);
    paint.setRenderHint(QPainter::Antialiasing);
    paint.setPen(QPen(QColor(70, 45, 20), 3));
    paint.setBrush(QColor(20, 110, 60));
    paint.drawRoundedRect(QRectF(2, 2, 60, 60), 10, 10);
    paint.setPen(Qt::NoPen);
    paint.setBrush(QColor(20, 20, 20));
    paint.drawEllipse(QRectF(32, 12, 22, 22));
    paint.setBrush(Qt::white);
    paint.drawEllipse(QRectF(38, 17, 10, 10));
    paint.setBrush(QColor(245, 245, 235));
    paint.drawEllipse(QRectF(12, 32, 22, 22));
    return picture;
}

} // namespace

AboutDialog::AboutDialog(const AboutFacts& facts, ui::Desktop& desktop, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About ") + facts.title);

    QLabel* picIcon = ui::makeDialogLabel(this, QStringLiteral("picIcon"), QString());
    picIcon->setPixmap(productPicture());
    QLabel* lblTitle = ui::makeDialogLabel(this, QStringLiteral("lblTitle"), facts.title);
    QFont titleFont = lblTitle->font();
    titleFont.setPointSize(titleFont.pointSize() + 8);
    titleFont.setBold(true);
    lblTitle->setFont(titleFont);

    const QString programFolder = QDir::toNativeSeparators(facts.programFolder);
    const QString dataFolder = QDir::toNativeSeparators(facts.dataFolder);
    auto* grid = new QGridLayout;
    grid->addWidget(
        ui::makeDialogLabel(this, QStringLiteral("Label5"), QStringLiteral("Version: ")), 0, 0);
    grid->addWidget(ui::makeDialogLabel(this, QStringLiteral("lblVersion"), facts.version), 0, 1);
    grid->addWidget(
        ui::makeDialogLabel(this, QStringLiteral("Label2"), QStringLiteral("Program : ")), 1, 0);
    grid->addWidget(linkLabel(this, QStringLiteral("URLLabel3"), programFolder,
                              QUrl::fromLocalFile(facts.programFolder), desktop),
                    1, 1);
    grid->addWidget(ui::makeDialogLabel(this, QStringLiteral("Label3"), QStringLiteral("Data : ")),
                    2, 0);
    grid->addWidget(linkLabel(this, QStringLiteral("URLLabel4"), dataFolder,
                              QUrl::fromLocalFile(facts.dataFolder), desktop),
                    2, 1);
    grid->addWidget(ui::makeDialogLabel(this, QStringLiteral("Label4"),
                                        QStringLiteral("(Click the above links to open folders)")),
                    3, 1);
    grid->addWidget(
        ui::makeDialogLabel(this, QStringLiteral("Label1"), QStringLiteral("Web Address:")), 4, 0);
    grid->addWidget(linkLabel(this, QStringLiteral("URLLabel2"), facts.webAddress,
                              QUrl(facts.webAddress), desktop),
                    4, 1);
    grid->addWidget(
        ui::makeDialogLabel(this, QStringLiteral("lblDescription"), QStringLiteral("Email: ")), 5,
        0);
    grid->addWidget(linkLabel(this, QStringLiteral("URLLabel1"), facts.contactMail,
                              QUrl(QStringLiteral("mailto:") + facts.contactMail), desktop),
                    5, 1);
    grid->setColumnStretch(1, 1);

    QLabel* lblDisclaimer = ui::makeDialogLabel(
        this, QStringLiteral("lblDisclaimer"),
        QStringLiteral("Warning: %1 is provided \"as is\", without warranty of any kind, express "
                       "or implied. In no event shall its authors be liable for any claim, damage "
                       "or other liability arising from the use of the program. Measured speeds "
                       "and training feedback are guides, not certified measurements.")
            .arg(facts.title));
    lblDisclaimer->setWordWrap(true);
    lblDisclaimer->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    lblDisclaimer->setMargin(6);

    auto* cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);

    auto* heading = new QHBoxLayout;
    heading->addWidget(picIcon);
    heading->addSpacing(12);
    heading->addWidget(lblTitle, 1);
    auto* foot = new QHBoxLayout;
    foot->addStretch();
    foot->addWidget(cmdOK);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(heading);
    layout->addSpacing(8);
    layout->addLayout(grid);
    layout->addSpacing(8);
    layout->addWidget(lblDisclaimer);
    layout->addLayout(foot);
    setMinimumWidth(460);
}

} // namespace ravelcue::utilities
