#pragma once

#include <functional>
#include <string>

#include <QObject>
#include <QString>
#include <QTime>

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::playback {

// JPEG stills of the pictures on show: one from the selected player, or one from each player of
// a Set with a common time stamp, which makes an image Set that opens again into the players.
// UI thread only.
class Stills : public QObject {
    Q_OBJECT
public:
    using TimeOfDay = std::function<QTime()>;
    static constexpr int kJpegQuality = 90;

    Stills(ui::WindowContext& context, TimeOfDay timeOfDay, QObject* parent = nullptr);

    void mnuCaptureImage_Click();
    void mnuCaptureSet_Click();

private:
    std::string stamp() const;
    // The still's name for a player, empty when the loaded file is of no known type.
    std::string stillName(int player, const std::string& stamp) const;
    // Saves the still of a player into `name`, making its folder when missing; empty when it was
    // written, else the file and why it was not.
    QString save(int player, const std::string& name);

    ui::WindowContext& context_;
    TimeOfDay timeOfDay_;
};

} // namespace ravelcue::playback
