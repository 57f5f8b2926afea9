#pragma once

#include <cstdint>
#include <functional>

#include <QDialog>
#include <QString>

class QPlainTextEdit;
class QRadioButton;

namespace ravelcue::markups {

// frmTextInput, "Enter Text": a note of one line and its colour. It opens with an empty note and
// Yellow chosen, takes line breaks out as they are typed or pasted, and is unloaded when it
// closes. accepted() carries a note only when one was typed.
class TextInputDialog : public QDialog {
    Q_OBJECT
public:
    TextInputDialog(QWidget* owner, std::function<void(int)> showHelp);

    QString note() const;
    std::int32_t colour() const;

private:
    void txtNote_Change();

    QPlainTextEdit* txtNote_ = nullptr;
    std::vector<std::pair<QRadioButton*, std::int32_t>> colours_;
};

} // namespace ravelcue::markups
