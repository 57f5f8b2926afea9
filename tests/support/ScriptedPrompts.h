#pragma once

#include "platform/ui/Prompts.h"

#include <deque>
#include <vector>

#include <QString>
#include <QStringList>

namespace ravelcue::test {

// Prompts that answer from a script and remember what was said. A message with no scripted
// answer gets the first button: Ok, or Yes for a Yes/No question. Dialogs with no scripted answer
// are cancelled.
class ScriptedPrompts final : public ui::Prompts {
public:
    struct Shown {
        QString text;
        ui::MessageIcon icon;
        ui::MessageButtons buttons;
    };

    ui::MessageAnswer message(const QString& text, ui::MessageIcon icon,
                              ui::MessageButtons buttons) override;
    std::optional<QString> openFile(const ui::OpenFileRequest& request) override;
    std::optional<QColor> chooseColor(const QColor& initial) override;

    void answerNext(ui::MessageAnswer answer) { answers_.push_back(answer); }
    // A null path cancels the dialog.
    void chooseFileNext(const QString& path) { files_.push_back(path); }
    void chooseColorNext(const QColor& color) { colors_.push_back(color); }

    const std::vector<Shown>& shown() const { return shown_; }
    QStringList texts() const;
    const std::vector<ui::OpenFileRequest>& fileRequests() const { return fileRequests_; }
    void clear() { shown_.clear(); }

private:
    std::deque<ui::MessageAnswer> answers_;
    std::deque<QString> files_;
    std::deque<QColor> colors_;
    std::vector<Shown> shown_;
    std::vector<ui::OpenFileRequest> fileRequests_;
};

} // namespace ravelcue::test
