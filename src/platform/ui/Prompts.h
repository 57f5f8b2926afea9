#pragma once

#include <optional>

#include <QColor>
#include <QString>

namespace ravelcue::ui {

enum class MessageIcon { None, Information, Exclamation, Critical, Question };
enum class MessageButtons { Ok, OkCancel, YesNo };
enum class MessageAnswer { Ok, Cancel, Yes, No };

struct OpenFileRequest {
    QString title;
    QString folder;
    QString fileName;      // shown first in the name box
    QString filter;        // "AVI Files(*.avi)|*.avi|All Files(*.*)|*.*"
    QString defaultSuffix; // "avi", without the point
};

// Every message box and file or colour dialog of the program goes through here, so that tests can
// script the answers and read what was said. UI thread only.
class Prompts {
public:
    virtual ~Prompts() = default;

    // A modal message with the program's name as its title.
    virtual MessageAnswer message(const QString& text, MessageIcon icon = MessageIcon::None,
                                  MessageButtons buttons = MessageButtons::Ok) = 0;
    // The chosen file's full path, or nothing on Cancel.
    virtual std::optional<QString> openFile(const OpenFileRequest& request) = 0;
    // The chosen colour, or nothing on Cancel.
    virtual std::optional<QColor> chooseColor(const QColor& initial) = 0;
};

// Turns "AVI Files(*.avi)|*.avi|All Files(*.*)|*.*" into Qt's "AVI Files (*.avi);;All Files (*)".
QString qtNameFilters(const QString& pipeFilter);

} // namespace ravelcue::ui
