#include "TextInputDialog.h"

#include "platform/ui/Controls.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTextCursor>
#include <QVBoxLayout>

namespace ravelcue::markups {

namespace {
constexpr int kHelpTopic = 115;
}

TextInputDialog::TextInputDialog(QWidget* owner, std::function<void(int)> showHelp)
    : QDialog(owner) {
    setObjectName(QStringLiteral("frmTextInput"));
    setWindowTitle(QStringLiteral("Enter Text"));
    setAttribute(Qt::WA_DeleteOnClose);

    txtNote_ = new QPlainTextEdit(this);
    txtNote_->setObjectName(QStringLiteral("txtNote"));
    txtNote_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtNote_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    connect(txtNote_, &QPlainTextEdit::textChanged, this, &TextInputDialog::txtNote_Change);

    auto* frame = new QGroupBox(QStringLiteral("Text Color"), this);
    frame->setObjectName(QStringLiteral("Frame1"));
    auto* options = new QVBoxLayout(frame);
    static constexpr std::pair<const char*, std::int32_t> kColours[] = {
        {"Yellow", 65535}, {"White", 16777215}, {"Black", 0},
        {"Red", 255},      {"Green", 65280},    {"Blue", 16711680}};
    for (const auto& [name, value] : kColours) {
        const QString caption = QString::fromLatin1(name);
        auto* option = new QRadioButton(caption, frame);
        // The red option has always been spelled with a capital O.
        option->setObjectName(
            (caption == QLatin1String("Red") ? QStringLiteral("Opt") : QStringLiteral("opt")) +
            caption);
        options->addWidget(option);
        colours_.emplace_back(option, value);
    }
    colours_.front().first->setChecked(true);

    QPushButton* ok = ui::makeDialogButton(this, QStringLiteral("cmdOK"), QStringLiteral("OK"));
    QPushButton* cancel =
        ui::makeDialogButton(this, QStringLiteral("cmdCancel"), QStringLiteral("Cancel"));
    QPushButton* help =
        ui::makeDialogButton(this, QStringLiteral("cmdHelp"), QStringLiteral("Help"));
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(help, &QPushButton::clicked, this, [showHelp = std::move(showHelp)] {
        if (showHelp) {
            showHelp(kHelpTopic);
        }
    });

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    buttons->addWidget(help);
    buttons->addStretch();
    auto* body = new QHBoxLayout;
    body->addWidget(txtNote_, 1);
    body->addWidget(frame);
    body->addLayout(buttons);
    setLayout(body);
    resize(460, 200);
}

QString TextInputDialog::note() const {
    return txtNote_->toPlainText();
}

std::int32_t TextInputDialog::colour() const {
    for (const auto& [option, value] : colours_) {
        if (option->isChecked()) {
            return value;
        }
    }
    return colours_.front().second;
}

void TextInputDialog::txtNote_Change() {
    const QString text = txtNote_->toPlainText();
    if (!text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r'))) {
        return;
    }
    QString oneLine = text;
    oneLine.remove(QLatin1Char('\r')).remove(QLatin1Char('\n'));
    const QSignalBlocker quiet(txtNote_);
    txtNote_->setPlainText(oneLine);
    txtNote_->moveCursor(QTextCursor::End);
}

} // namespace ravelcue::markups
