#pragma once

#include <QPointer>
#include <QUrl>

class QTextBrowser;
class QWidget;

namespace ravelcue::ui {

// The help of the program: short HTML topics compiled into it, each known by a number (10 the
// contents, 20 Delete Files, 108 the break speed log, 115 text notes, 160 Setup, 180 the update
// check), shown in one small window that stays open beside the program until the user closes it.
// Every Help button and F1 comes here with its topic. UI thread only.
class HelpWindow {
public:
    HelpWindow();
    ~HelpWindow();
    HelpWindow(const HelpWindow&) = delete;
    HelpWindow& operator=(const HelpWindow&) = delete;

    // Brings up the window at the topic; a number with no topic says so in the window.
    void showTopic(int topic);

    // The window once it was shown, else null; its browser is "txtHelp".
    QWidget* window() const { return window_; }
    // The page shown, as "qrc:/help/20.html".
    QUrl source() const;

    static QUrl topicUrl(int topic);
    static bool hasTopic(int topic);

private:
    void load();

    QPointer<QWidget> window_;
    QTextBrowser* txtHelp_ = nullptr;
};

} // namespace ravelcue::ui
