#include "FileSetCapture.h"

#include "CaptureToolFrame.h"
#include "LiveView.h"
#include "core/AppSettings.h"
#include "core/AppState.h"
#include "core/FileSetNames.h"
#include "core/ModeMachine.h"
#include "core/NumberFormat.h"
#include "platform/media/MediaInstances.h"
#include "platform/ui/CancelKey.h"
#include "platform/ui/Clock.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/WindowContext.h"

#include <algorithm>

#include <QCheckBox>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace ravelcue::capture {

namespace {

const QString kStartCaption = QStringLiteral("Start Video Capture");
const QString kStopCaption = QStringLiteral("Stop Video Capture");
const QString kBlankCaption = QStringLiteral(" ");

// How the file systems the program is used on compare names: Windows and macOS ignore case, so
// there a base of Match1 names the files of match1.
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
constexpr names::NameCase kFileNameCase = names::NameCase::Ignored;
#else
constexpr names::NameCase kFileNameCase = names::NameCase::Exact;
#endif

QString qtext(const std::string& text) {
    return QString::fromStdString(text);
}

void setTextColour(QLineEdit* box, const QColor& colour) {
    QPalette palette = box->palette();
    palette.setColor(QPalette::Text, colour);
    box->setPalette(palette);
}

} // namespace

FileSetCapture::FileSetCapture(ui::WindowContext& context, CaptureToolFrame& frame,
                               LiveView& liveView, PlayBeep playBeep)
    : QObject(frame.frame())
    , context_(context)
    , frame_(frame)
    , liveView_(liveView)
    , playBeep_(std::move(playBeep)) {
    connect(frame_.cmdStartCapture(), &QPushButton::clicked, this,
            &FileSetCapture::cmdStartCapture_Click);
    connect(frame_.tmrBlink(), &QTimer::timeout, this, &FileSetCapture::tmrBlink_Timer);
    frame_.txtFileName()->installEventFilter(this);
    for (int i = 0; i < 4; ++i) {
        connect(&context_.media.cam(i), &media::CaptureInstance::captureFailed, this,
                [this, i](const media::MediaError& error) { cameraFailed(i, error); });
    }
}

bool FileSetCapture::eventFilter(QObject* watched, QEvent* event) {
    // The type first: while the window is torn down the tool frame may already be gone.
    if (event->type() == QEvent::MouseButtonPress && watched == frame_.txtFileName()) {
        txtFileName_Click();
    }
    return QObject::eventFilter(watched, event);
}

void FileSetCapture::txtFileName_Click() {
    frame_.txtFileName()->clear();
    setTextColour(frame_.txtFileName(), Qt::black);
}

void FileSetCapture::cmdStartCapture_Click() {
    // A click while the cameras are being started and held waits for nothing: it is dropped.
    if (starting_) {
        return;
    }
    const QString caption = frame_.cmdStartCapture()->text();
    if (caption == kStartCaption) {
        Start();
    } else if (caption == kStopCaption || caption == kBlankCaption) {
        Stop();
    }
}

void FileSetCapture::rejectName(const QString& redText) {
    setTextColour(frame_.txtFileName(), Qt::red);
    frame_.txtFileName()->setText(redText);
    frame_.cmdStartCapture()->setFocus();
}

bool FileSetCapture::passesChecks() {
    QLineEdit* name = frame_.txtFileName();
    name->setFocus();
    int lowest = -1;
    for (int i = 0; i < 4; ++i) {
        ticked_[static_cast<size_t>(i)] = frame_.chkCapture(i)->isChecked();
        if (lowest < 0 && ticked_[static_cast<size_t>(i)]) {
            lowest = i;
        }
    }
    if (lowest < 0) {
        context_.prompts.message(QStringLiteral("At least 1 camera must be selected for capture."),
                                 ui::MessageIcon::Exclamation, ui::MessageButtons::Ok);
        return false;
    }
    context_.state.SelectedCam = lowest;
    const QString typed = name->text();
    if (!names::isValidBaseName(typed.toStdString())) {
        rejectName(QStringLiteral("Characters \"( ) +\" not allowed in filename"));
        return false;
    }
    context_.state.CurrentVideoFile = typed.toStdString();
    if (typed.isEmpty() || typed.contains(QLatin1String("Please enter"), Qt::CaseInsensitive)) {
        rejectName(QStringLiteral("Please enter a filename for captured video!"));
        return false;
    }
    name->clear();
    return true;
}

bool FileSetCapture::clearExistingFiles(const QString& folder, const QString& base,
                                        const QString& extension) {
    const auto matching = [&] {
        QStringList found;
        // Files only, hidden ones too: a folder is never a member and is not ours to delete.
        const QStringList all = QDir(folder).entryList(QDir::Files | QDir::Hidden);
        for (const QString& file : all) {
            if (names::matchesCapturePattern(file.toStdString(), base.toStdString(),
                                             extension.toStdString(), kFileNameCase)) {
                found << file;
            }
        }
        return found;
    };
    const QStringList existing = matching();
    if (existing.isEmpty()) {
        return true;
    }
    const ui::MessageAnswer answer = context_.prompts.message(
        QStringLiteral("File already exists. Do you want to overwrite the existing file?"),
        ui::MessageIcon::Question, ui::MessageButtons::YesNo);
    if (answer != ui::MessageAnswer::Yes) {
        return false;
    }
    for (const QString& file : existing) {
        QFile::remove(QDir(folder).filePath(file));
    }
    if (!matching().isEmpty()) {
        context_.prompts.message(extension.compare(QLatin1String(".wmv"), Qt::CaseInsensitive) == 0
                                     ? QStringLiteral("Error deleting wmv files!")
                                     : QStringLiteral("Error deleting avi files!"),
                                 ui::MessageIcon::Critical, ui::MessageButtons::Ok);
        return false;
    }
    return true;
}

EncoderChoice FileSetCapture::chooseEncoder() const {
    const media::CaptureInstance& first = context_.media.cam(0);
    if (context_.settings.CaptureType == "WMV") {
        return chooseWmvProfile(context_.settings.WmvProfile, first.ProfileCount(),
                                [&first](int n) { return first.ProfileName(n).toStdString(); });
    }
    return chooseAviCodec(context_.settings.AviCodec, first.CompressorCount(),
                          [&first](int n) { return first.CompressorName(n).toStdString(); });
}

void FileSetCapture::showCaptureStatus(const QString& base, const QString& extension,
                                       const EncoderChoice& encoder) {
    ui::StatusPanels& status = context_.status;
    const bool wmv = context_.settings.CaptureType == "WMV";
    const auto k = static_cast<size_t>(context_.state.SelectedCam);
    status.setPanel(1, QStringLiteral("Capturing Video"));
    status.setPanel(2, base + extension);
    status.setPanel(3, (wmv ? QStringLiteral("Profile:") : QStringLiteral("Codec:")) +
                           qtext(encoder.name));
    status.setPanel(4, wmv ? QString()
                           : QStringLiteral("Size:") + qtext(context_.settings.VideoSize[k]) +
                                 QStringLiteral(", Fps:") + qtext(context_.settings.FrameRate[k]));
    status.setPanel(5, QString());
}

media::MediaError FileSetCapture::startAndHold(int camera, const EncoderChoice& encoder) {
    media::CaptureInstance& instance = context_.media.cam(camera);
    media::MediaError error;
    if (context_.settings.CaptureType == "WMV") {
        instance.SetProfileIndex(encoder.index);
        error = instance.StartCapture();
    } else if (encoder.uncompressed) {
        instance.SetCompressorIndex(-1);
        error = instance.StartCaptureUncompressed();
    } else {
        instance.SetCompressorIndex(encoder.index);
        instance.SetCodecSettings(context_.settings.Codec);
        error = instance.StartCapture();
    }
    if (error.ok()) {
        instance.PauseCapture();
    }
    return error;
}

QString FileSetCapture::cameraLabel(int camera) const {
    return QStringLiteral("Camera %1 (%2)")
        .arg(camera + 1)
        .arg(qtext(context_.settings.CamNickname[static_cast<size_t>(camera)]));
}

void FileSetCapture::Start() {
    if (!passesChecks()) {
        return;
    }
    const QString base = qtext(context_.state.CurrentVideoFile);
    const QString extension = qtext(names::captureExtension(context_.settings.CaptureType));
    if (extension.isEmpty()) {
        return;
    }
    const QString folder = qtext(context_.state.AppDataDir) + QStringLiteral("/Videos");
    if (!clearExistingFiles(folder, base, extension)) {
        return;
    }

    starting_ = true;
    stopWhenStarted_ = false;
    context_.mode.State("StartCaptureVideo");
    context_.cancelKey.setCancelButton(frame_.cmdStartCapture());
    frame_.cmdStartCapture()->setText(kStopCaption);

    const EncoderChoice encoder = chooseEncoder();
    for (int i = 0; i < 4; ++i) {
        if (ticked_[static_cast<size_t>(i)]) {
            const std::string member = names::memberPath(
                folder.toStdString() + "/", base.toStdString(),
                context_.settings.CamNickname[static_cast<size_t>(i)], extension.toStdString());
            context_.media.cam(i).SetCaptureFile(qtext(member));
        }
    }
    showCaptureStatus(base, extension, encoder);

    // Every camera is started and held before any records, so that the release below is one
    // short loop and the first frames of the Set lie close together.
    QStringList failed;
    QStringList causes;
    for (int i = 0; i < 4; ++i) {
        const auto k = static_cast<size_t>(i);
        recordingCamera_[k] = false;
        if (ticked_[k]) {
            const media::MediaError error = startAndHold(i, encoder);
            recordingCamera_[k] = error.ok();
            if (!error.ok()) {
                failed << cameraLabel(i);
                causes << cameraLabel(i) + QStringLiteral(": ") + error.text;
            }
        } else {
            context_.media.cam(i).SetPreview(false);
        }
    }
    liveView_.requestCameraOption(4);
    context_.clock.DelaySeconds(2);
    // A full disk reported during the hold stops the Set below; no camera records meanwhile.
    for (int i = 0; i < 4 && !stopWhenStarted_; ++i) {
        if (recordingCamera_[static_cast<size_t>(i)]) {
            context_.media.cam(i).ResumeCapture();
        }
    }
    recording_ = true;
    frame_.tmrBlink()->start();
    if (playBeep_) {
        playBeep_(500, 500);
    }
    starting_ = false;

    if (!failed.isEmpty()) {
        context_.prompts.message(failed.join(QStringLiteral(", ")) +
                                     QStringLiteral(" could not start recording.\n") +
                                     causes.join('\n'),
                                 ui::MessageIcon::Exclamation, ui::MessageButtons::Ok);
    }
    if (stopWhenStarted_ ||
        std::none_of(recordingCamera_.begin(), recordingCamera_.end(), [](bool r) { return r; })) {
        Stop();
    }
}

void FileSetCapture::Stop() {
    context_.mode.State("StopCaptureVideo");
    for (int i = 0; i < 4; ++i) {
        if (ticked_[static_cast<size_t>(i)]) {
            context_.media.cam(i).StopCapture();
        } else {
            context_.media.cam(i).SetPreview(true);
        }
        recordingCamera_[static_cast<size_t>(i)] = false;
    }
    context_.cancelKey.setCancelButton(nullptr);
    frame_.tmrBlink()->stop();
    recording_ = false;
    frame_.cmdStartCapture()->setText(kStartCaption);
    context_.status.setPanel(1, QStringLiteral("Capturing Stopped"));
}

void FileSetCapture::tmrBlink_Timer() {
    const media::CaptureInstance& shown = context_.media.cam(context_.state.SelectedCam);
    if (shown.IsCapturing()) {
        const media::CaptureStats stats = shown.GetCaptureStats();
        context_.status.setPanel(5, QStringLiteral("%1 frames (%2 dropped) - %3 sec.")
                                        .arg(stats.framesWritten)
                                        .arg(stats.framesDropped)
                                        .arg(qtext(Format(stats.elapsedMs / 1000.0, "Fixed"))));
    }
    if (CaptureBlinkOn) {
        frame_.cmdStartCapture()->setText(kBlankCaption);
        CaptureBlinkOn = false;
    } else {
        frame_.cmdStartCapture()->setText(kStopCaption);
        CaptureBlinkOn = true;
    }
}

void FileSetCapture::cameraFailed(int camera, const media::MediaError& error) {
    const auto k = static_cast<size_t>(camera);
    if (!(recording_ || starting_) || !recordingCamera_[k]) {
        return;
    }
    recordingCamera_[k] = false;
    if (error.number == media::media_error::DiskFull) {
        // The other cameras write to the same disk: stop them all while their files are whole.
        if (starting_) {
            stopWhenStarted_ = true;
        } else {
            Stop();
        }
        context_.prompts.message(
            QStringLiteral("The disk is full. Recording stopped; the files recorded so far are "
                           "kept."),
            ui::MessageIcon::Critical, ui::MessageButtons::Ok);
        return;
    }
    context_.prompts.message(cameraLabel(camera) + QStringLiteral(" stopped recording: ") +
                                 error.text +
                                 QStringLiteral(". Its file is kept up to that moment."),
                             ui::MessageIcon::Exclamation, ui::MessageButtons::Ok);
    const bool anyLeft =
        std::any_of(recordingCamera_.begin(), recordingCamera_.end(), [](bool r) { return r; });
    if (!anyLeft && !starting_) {
        Stop();
    }
}

} // namespace ravelcue::capture
