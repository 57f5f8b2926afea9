#include "QtPrompts.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QMessageBox>
#include <QStringList>

namespace ravelcue::ui {

QString qtNameFilters(const QString& pipeFilter) {
    const QStringList parts = pipeFilter.split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString label = parts[i];
        const qsizetype bracket = label.indexOf(QLatin1Char('('));
        if (bracket > 0) {
            label = label.left(bracket).trimmed();
        }
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1String("*.*"), QLatin1String("*"));
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        filters << QStringLiteral("%1 (%2)").arg(label, patterns);
    }
    return filters.join(QLatin1String(";;"));
}

QtPrompts::QtPrompts(QWidget* owner)
    : owner_(owner) {}

QWidget* QtPrompts::owner() const {
    return owner_ ? owner_.data() : QApplication::activeWindow();
}

MessageAnswer QtPrompts::message(const QString& text, MessageIcon icon, MessageButtons buttons) {
    QMessageBox box(owner());
    box.setWindowTitle(QStringLiteral("Ravelcue"));
    box.setText(text);
    switch (icon) {
    case MessageIcon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case MessageIcon::Exclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case MessageIcon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case MessageIcon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case MessageIcon::None:
        break;
    }
    switch (buttons) {
    case MessageButtons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case MessageButtons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case MessageButtons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Yes:
        return MessageAnswer::Yes;
    case QMessageBox::No:
        return MessageAnswer::No;
    case QMessageBox::Cancel:
        return MessageAnswer::Cancel;
    default:
        return buttons == MessageButtons::YesNo ? MessageAnswer::No : MessageAnswer::Ok;
    }
}

std::optional<QString> QtPrompts::openFile(const OpenFileRequest& request) {
    QFileDialog dialog(owner(), request.title, request.folder, qtNameFilters(request.filter));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (!request.defaultSuffix.isEmpty()) {
        dialog.setDefaultSuffix(request.defaultSuffix);
    }
    if (!request.fileName.isEmpty()) {
        dialog.selectFile(request.fileName);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return dialog.selectedFiles().constFirst();
}

std::optional<QColor> QtPrompts::chooseColor(const QColor& initial) {
    const QColor chosen = QColorDialog::getColor(initial, owner());
    if (!chosen.isValid()) {
        return std::nullopt;
    }
    return chosen;
}

} // namespace ravelcue::ui
