#pragma once

#include "Prompts.h"

#include <QPointer>
#include <QWidget>

namespace ravelcue::ui {

// Prompts as real Qt dialogs, owned by the given window.
class QtPrompts final : public Prompts {
public:
    explicit QtPrompts(QWidget* owner = nullptr);
    void setOwner(QWidget* owner) { owner_ = owner; }

    MessageAnswer message(const QString& text, MessageIcon icon, MessageButtons buttons) override;
    std::optional<QString> openFile(const OpenFileRequest& request) override;
    std::optional<QColor> chooseColor(const QColor& initial) override;

private:
    QWidget* owner() const;

    QPointer<QWidget> owner_;
};

} // namespace ravelcue::ui
