#include "ScriptedPrompts.h"

namespace ravelcue::test {

ui::MessageAnswer ScriptedPrompts::message(const QString& text, ui::MessageIcon icon,
                                           ui::MessageButtons buttons) {
    shown_.push_back({text, icon, buttons});
    if (!answers_.empty()) {
        const ui::MessageAnswer answer = answers_.front();
        answers_.pop_front();
        return answer;
    }
    return buttons == ui::MessageButtons::YesNo ? ui::MessageAnswer::Yes : ui::MessageAnswer::Ok;
}

std::optional<QString> ScriptedPrompts::openFile(const ui::OpenFileRequest& request) {
    fileRequests_.push_back(request);
    if (files_.empty()) {
        return std::nullopt;
    }
    const QString path = files_.front();
    files_.pop_front();
    if (path.isNull()) {
        return std::nullopt;
    }
    return path;
}

std::optional<QColor> ScriptedPrompts::chooseColor(const QColor&) {
    if (colors_.empty()) {
        return std::nullopt;
    }
    const QColor color = colors_.front();
    colors_.pop_front();
    return color;
}

QStringList ScriptedPrompts::texts() const {
    QStringList all;
    for (const Shown& s : shown_) {
        all << s.text;
    }
    return all;
}

} // namespace ravelcue::test
