#include "SetupDialog.h"

#include "CodecSettingsDialog.h"
#include "FormatSettingsDialog.h"
#include "SourceSettingsDialog.h"
#include "core/NumberFormat.h"
#include "core/SettingsStore.h"
#include "core/TextNumbers.h"
#include "core/VideoSize.h"
#include "platform/media/AudioInstance.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/MediaEngine.h"
#include "platform/media/VideoView.h"
#include "platform/ui/Controls.h"
#include "platform/ui/HelpWindow.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/StatusPopup.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

namespace ravelcue::setup {

namespace {

// 1440 by 1080 twips at 15 twips a pixel.
constexpr QSize kPreviewSize(96, 72);
constexpr int kAudioLevelMs = 250;
constexpr std::int32_t kDefaultMarkerColor = 65280;

QString qtext(const std::string& text) {
    return QString::fromStdString(text);
}

// The settings keep colours with red in the low byte.
QColor toQColor(std::int32_t color) {
    return {color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF};
}

std::int32_t fromQColor(const QColor& color) {
    return color.red() | (color.green() << 8) | (color.blue() << 16);
}

QCheckBox* checkBox(QWidget* parent, const QString& name, const QString& caption,
                    const QString& toolTip = {}) {
    auto* box = new QCheckBox(caption, parent);
    box->setObjectName(name);
    box->setToolTip(toolTip);
    return box;
}

QComboBox* dropDown(QWidget* parent, const QString& name, const QString& toolTip = {}) {
    auto* list = new QComboBox(parent);
    list->setObjectName(name);
    list->setToolTip(toolTip);
    return list;
}

QLineEdit* textBox(QWidget* parent, const QString& name, const QString& toolTip) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setToolTip(toolTip);
    return box;
}

QGroupBox* frame(QWidget* parent, const QString& name, const QString& caption) {
    auto* box = new QGroupBox(caption, parent);
    box->setObjectName(name);
    return box;
}

void fill(QComboBox* list, const std::vector<std::string>& entries, int selection) {
    list->clear();
    for (const std::string& entry : entries) {
        list->addItem(qtext(entry));
    }
    list->setCurrentIndex(selection);
}

ui::MessageIcon iconOf(SetupIcon icon) {
    switch (icon) {
    case SetupIcon::Critical:
        return ui::MessageIcon::Critical;
    case SetupIcon::Exclamation:
        return ui::MessageIcon::Exclamation;
    case SetupIcon::Plain:
        break;
    }
    return ui::MessageIcon::None;
}

} // namespace

SetupDialog::SetupDialog(SetupServices services, QWidget* owner)
    : QDialog(owner)
    , services_(std::move(services))
    , audio_(services_.engine.createAudio()) {
    setObjectName(QStringLiteral("frmSetup"));
    setWindowTitle(QStringLiteral("Setup"));
    for (int i = 0; i < kCameraCount; ++i) {
        previews_[static_cast<size_t>(i)] = services_.engine.createCapture(i);
    }
    auto* layout = new QVBoxLayout(this);
    buildVideoFrame();
    auto* lower = new QHBoxLayout;
    lower->addWidget(buildMarkerFrame());
    lower->addWidget(buildAudioFrame());
    lower->addWidget(buildBreakSpeedFrame());
    lower->addWidget(buildMiscFrame());
    layout->addLayout(lower);

    const ui::DialogButtonRow buttons = ui::makeOkCancelRow(this);
    QPushButton* ok = buttons.ok;
    QPushButton* cancel = buttons.cancel;
    auto* help = ui::makeDialogButton(this, QStringLiteral("cmdHelp"), QStringLiteral("Help"),
                                      QStringLiteral("Click for help"));
    buttons.row->addWidget(help);
    layout->addLayout(buttons.row);
    connect(ok, &QPushButton::clicked, this, &SetupDialog::cmdOK_Click);
    connect(cancel, &QPushButton::clicked, this, &SetupDialog::reject);
    connect(help, &QPushButton::clicked, this, [this] { services_.help.showTopic(160); });

    tmrAudioLevel_ =
        ui::makeTimer(this, QStringLiteral("tmrAudioLevel"), kAudioLevelMs, services_.clock);
    connect(tmrAudioLevel_, &QTimer::timeout, this, &SetupDialog::tmrAudioLevel_Timer);
}

// The capture instances, members, go before the dialog's widgets and take their pictures with them.
SetupDialog::~SetupDialog() {
    releaseDevices();
}

media::CaptureInstance& SetupDialog::preview(int index) const {
    return *previews_.at(static_cast<size_t>(index));
}

void SetupDialog::buildVideoFrame() {
    QGroupBox* video = frame(this, QStringLiteral("fmVideo"), QStringLiteral("Video"));
    auto* grid = new QGridLayout(video);
    grid->addWidget(new QLabel(QStringLiteral("Enable"), video), 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Nickname"), video), 0, 3);
    for (int i = 0; i < kCameraCount; ++i) {
        const auto k = static_cast<size_t>(i);
        const int row = 1 + i;
        const QString number = QString::number(i + 1);
        chkCamEnable_[k] = checkBox(video, ui::indexedName(QStringLiteral("chkCamEnable"), i), {},
                                    QStringLiteral("Enable Camera ") + number);
        chkCamEnable_[k]->setEnabled(false);
        grid->addWidget(chkCamEnable_[k], row, 0);
        grid->addWidget(new QLabel(QStringLiteral("Camera %1 Source").arg(number), video), row, 1);
        cboVideoSource_[k] = dropDown(video, ui::indexedName(QStringLiteral("cboVideoSource"), i),
                                      QStringLiteral("Selects video source"));
        cboVideoSource_[k]->setMinimumContentsLength(16);
        grid->addWidget(cboVideoSource_[k], row, 2);
        connect(cboVideoSource_[k], &QComboBox::activated, this,
                &SetupDialog::cboVideoSource_Click);
        txtNickname_[k] = textBox(video, ui::indexedName(QStringLiteral("txtNickname"), i),
                                  QStringLiteral("Nickname for Camera ") + number);
        grid->addWidget(txtNickname_[k], row, 3);
        connect(txtNickname_[k], &QLineEdit::textChanged, this,
                [this, i] { txtNickname_Change(i); });
        cmdSourceDlg_[k] = ui::makeDialogButton(
            video, ui::indexedName(QStringLiteral("cmdSourceDlg"), i),
            QStringLiteral("Source Settings"), QStringLiteral("Set video source settings"));
        // Enabled once the row's device is connected and offers settings of its own.
        cmdSourceDlg_[k]->setEnabled(false);
        connect(cmdSourceDlg_[k], &QPushButton::clicked, this,
                [this, i] { cmdSourceDlg_Click(i); });
        grid->addWidget(cmdSourceDlg_[k], row, 4);
        cmdVideoFormatDlg_[k] = ui::makeDialogButton(
            video, ui::indexedName(QStringLiteral("cmdVideoFormatDlg"), i),
            QStringLiteral("Format Settings"), QStringLiteral("Set Video Format Settings"));
        // Enabled once the row's device is connected and tells its modes.
        cmdVideoFormatDlg_[k]->setEnabled(false);
        connect(cmdVideoFormatDlg_[k], &QPushButton::clicked, this,
                [this, i] { cmdVideoFormatDlg_Click(i); });
        grid->addWidget(cmdVideoFormatDlg_[k], row, 5);

        auto* readBack = new QGridLayout;
        readBack->addWidget(new QLabel(QStringLiteral("Video Size:"), video), 0, 0);
        lblVidSize_[k] =
            ui::makeDialogLabel(video, ui::indexedName(QStringLiteral("lblVidSize"), i), QString());
        lblVidSize_[k]->setToolTip(QStringLiteral("Actual video size"));
        readBack->addWidget(lblVidSize_[k], 0, 1);
        readBack->addWidget(new QLabel(QStringLiteral("Framerate:"), video), 1, 0);
        lblFrameRate_[k] = ui::makeDialogLabel(
            video, ui::indexedName(QStringLiteral("lblFrameRate"), i), QString());
        lblFrameRate_[k]->setToolTip(QStringLiteral("Actual Framerate"));
        readBack->addWidget(lblFrameRate_[k], 1, 1);
        grid->addLayout(readBack, row, 6);

        media::VideoView* view = previews_[k]->view();
        view->setParent(video);
        view->setObjectName(ui::indexedName(QStringLiteral("VideoCapXCapture"), i));
        view->setFixedSize(kPreviewSize);
        grid->addWidget(view, row, 7);
    }

    const int row = 1 + kCameraCount;
    optEnableAVI_ = new QRadioButton(QStringLiteral("Enable AVI File Capture"), video);
    optEnableAVI_->setObjectName(QStringLiteral("optEnableAVI"));
    grid->addWidget(optEnableAVI_, row, 0, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Compressor"), video), row, 2, Qt::AlignRight);
    cboAviCodecs_ = dropDown(video, QStringLiteral("cboAviCodecs"),
                             QStringLiteral("Selects AVI codec used to capture"));
    grid->addWidget(cboAviCodecs_, row, 3);
    cmdVideoCompression_ = ui::makeDialogButton(video, QStringLiteral("cmdVideoCompression"),
                                                QStringLiteral("Codec Settings"),
                                                QStringLiteral("Change video codec settings"));
    grid->addWidget(cmdVideoCompression_, row, 4);
    optEnableWMV_ = new QRadioButton(QStringLiteral("Enable WMV File Capture"), video);
    optEnableWMV_->setObjectName(QStringLiteral("optEnableWMV"));
    grid->addWidget(optEnableWMV_, row + 1, 0, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Profile"), video), row + 1, 2, Qt::AlignRight);
    cboWmvProfiles_ = dropDown(video, QStringLiteral("cboWmvProfiles"),
                               QStringLiteral("Selects WMV profile used to capture"));
    grid->addWidget(cboWmvProfiles_, row + 1, 3, 1, 3);
    connect(optEnableAVI_, &QRadioButton::toggled, this, [this](bool avi) {
        cboAviCodecs_->setEnabled(avi);
        cboWmvProfiles_->setEnabled(!avi);
    });
    connect(cmdVideoCompression_, &QPushButton::clicked, this,
            &SetupDialog::cmdVideoCompression_Click);
    // The lossless compressors have nothing to set.
    connect(cboAviCodecs_, &QComboBox::currentIndexChanged, this, [this] {
        cmdVideoCompression_->setEnabled(
            codecSettingsKind(cboAviCodecs_->currentText().toStdString()) !=
            CodecSettingsKind::Nothing);
    });
    layout()->addWidget(video);
}

QWidget* SetupDialog::buildMarkerFrame() {
    QGroupBox* marker = frame(this, QStringLiteral("fmMarker"), QStringLiteral("Marker"));
    auto* grid = new QGridLayout(marker);
    grid->addWidget(new QLabel(QStringLiteral("Width"), marker), 0, 0);
    cboWidth_ = dropDown(marker, QStringLiteral("cboWidth"), QStringLiteral("Marker Width"));
    grid->addWidget(cboWidth_, 0, 1);
    connect(cboWidth_, &QComboBox::activated, this,
            [this](int entry) { services_.settings.MarkerWidth = entry + 1; });
    grid->addWidget(new QLabel(QStringLiteral("Marker Color"), marker), 1, 0);
    cmdMarkerColor_ = ui::makeDialogButton(marker, QStringLiteral("cmdMarkerColor"), QString(),
                                           QStringLiteral("Click to select the color for marker"));
    cmdMarkerColor_->setFixedWidth(40);
    grid->addWidget(cmdMarkerColor_, 1, 1);
    connect(cmdMarkerColor_, &QPushButton::clicked, this, &SetupDialog::cmdMarkerColor_Click);
    auto* defaults = ui::makeDialogButton(
        marker, QStringLiteral("cmdSetDefaultColors"), QStringLiteral("Defaults"),
        QStringLiteral("Set all the colors back to default values"));
    grid->addWidget(defaults, 2, 0, 1, 2);
    connect(defaults, &QPushButton::clicked, this, [this] {
        services_.settings.MarkerColor = kDefaultMarkerColor;
        showMarkerColor(kDefaultMarkerColor);
    });
    return marker;
}

QWidget* SetupDialog::buildAudioFrame() {
    QGroupBox* audio = frame(this, QStringLiteral("fmAudio"), QStringLiteral("Audio"));
    auto* grid = new QGridLayout(audio);
    grid->addWidget(new QLabel(QStringLiteral("Source"), audio), 0, 0);
    cboAudioSource_ = dropDown(audio, QStringLiteral("cboAudioSource"));
    grid->addWidget(cboAudioSource_, 0, 1);
    connect(cboAudioSource_, &QComboBox::activated, this, &SetupDialog::cboAudioSource_Click);
    chkTest_ = checkBox(audio, QStringLiteral("chkTest"), QStringLiteral("Test Audio Level"));
    grid->addWidget(chkTest_, 1, 0, 1, 2);
    connect(chkTest_, &QCheckBox::clicked, this, &SetupDialog::chkTest_Click);
    grid->addWidget(new QLabel(QStringLiteral("Audio Level"), audio), 2, 0);
    pbAudioLevel_ = new QProgressBar(audio);
    pbAudioLevel_->setObjectName(QStringLiteral("pbAudioLevel"));
    pbAudioLevel_->setRange(0, 100);
    pbAudioLevel_->setValue(0);
    pbAudioLevel_->setTextVisible(false);
    grid->addWidget(pbAudioLevel_, 2, 1);
    return audio;
}

QWidget* SetupDialog::buildBreakSpeedFrame() {
    QGroupBox* speed = frame(this, QStringLiteral("fmBreakSpeed"), QStringLiteral("Break Speed"));
    auto* grid = new QGridLayout(speed);
    chkUnits_ =
        checkBox(speed, QStringLiteral("chkUnits"), QStringLiteral("Metric Units"),
                 QStringLiteral("Used to set units to metric for break speed calculations"));
    grid->addWidget(chkUnits_, 0, 0, 1, 2);
    chkDistance_ =
        checkBox(speed, QStringLiteral("chkDistance"), QStringLiteral("Default Distance"),
                 QStringLiteral("Enable to use the entered distance for break speed "
                                "calculations"));
    grid->addWidget(chkDistance_, 1, 0, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Distance"), speed), 2, 0);
    txtDistance_ = textBox(speed, QStringLiteral("txtDistance"),
                           QStringLiteral("Default distance to use for speed calculation"));
    grid->addWidget(txtDistance_, 2, 1);
    chkCueball_ = checkBox(speed, QStringLiteral("chkCueball"), QStringLiteral("Subtract Cueball"),
                           QStringLiteral("Subtract cueball diameter in break speed calculation"));
    grid->addWidget(chkCueball_, 3, 0, 1, 2);
    return speed;
}

QWidget* SetupDialog::buildMiscFrame() {
    QGroupBox* misc = frame(this, QStringLiteral("fmMisc"), QStringLiteral("Misc"));
    auto* box = new QVBoxLayout(misc);
    chkEnableCheckForUpdate_ = checkBox(misc, QStringLiteral("chkEnableCheckForUpdate"),
                                        QStringLiteral("Check for update at Startup"),
                                        QStringLiteral("Enable check for new version at startup"));
    box->addWidget(chkEnableCheckForUpdate_);
    box->addStretch();
    return misc;
}

void SetupDialog::load() {
    services_.takeCameras();
    media::DeviceCatalog& catalog = services_.engine.devices();
    catalog.refresh();
    SetupDevices devices;
    for (int j = 0; j < catalog.VideoDeviceCount(); ++j) {
        devices.video.push_back(catalog.VideoDeviceName(j).toStdString());
    }
    for (int j = 0; j < catalog.AudioDeviceCount(); ++j) {
        devices.audio.push_back(catalog.AudioDeviceName(j).toStdString());
    }
    const media::CaptureInstance& first = preview(0);
    for (int n = 0; n < first.CompressorCount(); ++n) {
        devices.codecs.push_back(first.CompressorName(n).toStdString());
    }
    for (int n = 0; n < first.ProfileCount(); ++n) {
        devices.profiles.push_back(first.ProfileName(n).toStdString());
    }
    const SetupLoad loaded = loadSetupForm(
        services_.settings, RegistryReadOptional(services_.store, kCheckForUpdateSetting), devices);
    showForm(loaded);
    services_.popup.ShowPopup(QString(), -1);
    setupLoaded_ = !loaded.stopped;
}

void SetupDialog::showForm(const SetupLoad& loaded) {
    loaded_ = loaded.form;
    codec_ = loaded_.codec;
    const SetupForm& f = loaded.form;
    showMarkerColor(f.markerColor);
    chkUnits_->setChecked(f.metricUnits);
    chkCueball_->setChecked(f.subtractCueball);
    chkDistance_->setChecked(f.defaultDistance);
    txtDistance_->setText(qtext(f.distanceText));
    chkEnableCheckForUpdate_->setChecked(f.checkForUpdate);
    for (size_t i = 0; i < f.cameras.size(); ++i) {
        txtNickname_[i]->setText(qtext(f.cameras[i].nickname));
    }
    cboWidth_->clear();
    for (int w = 1; w <= 10; ++w) {
        cboWidth_->addItem(QString::number(w));
    }
    cboWidth_->setCurrentIndex(f.widthEntry);
    (f.aviCapture ? optEnableAVI_ : optEnableWMV_)->setChecked(true);
    cboAviCodecs_->setEnabled(f.aviCapture);
    cboWmvProfiles_->setEnabled(!f.aviCapture);

    // The messages come where the load meets them: after the lists before them are filled.
    size_t said = 0;
    auto sayNext = [&] {
        if (said < loaded.messages.size()) {
            say(loaded.messages[said++]);
        }
    };
    if (f.codecsFilled) {
        fill(cboAviCodecs_, f.codecEntries, f.codecSelection);
        if (f.codecSelection < 0) {
            sayNext();
            return;
        }
    }
    if (f.profilesFilled) {
        fill(cboWmvProfiles_, f.profileEntries, f.profileSelection);
        if (f.profileSelection < 0) {
            sayNext();
            return;
        }
    }
    if (f.videoEntries.empty()) {
        sayNext();
    }
    for (size_t i = 0; i < f.cameras.size(); ++i) {
        fill(cboVideoSource_[i], f.videoEntries, f.cameras[i].selection);
        chkCamEnable_[i]->setEnabled(f.cameras[i].canEnable);
        chkCamEnable_[i]->setChecked(f.cameras[i].enabled);
        if (f.cameras[i].canEnable) {
            ConnectPreview(static_cast<int>(i), f.cameras[i].selection);
        }
    }
    if (f.audioEntries.empty()) {
        sayNext();
        return;
    }
    fill(cboAudioSource_, f.audioEntries, -1);
    cboAudioSource_->setCurrentIndex(f.audioSelection);
    if (f.audioSelection >= 0) {
        cboAudioSource_Click();
    }
}

SetupForm SetupDialog::readForm() const {
    SetupForm f = loaded_;
    f.markerColor = markerColor_;
    f.widthEntry = cboWidth_->currentIndex();
    f.metricUnits = chkUnits_->isChecked();
    f.subtractCueball = chkCueball_->isChecked();
    f.defaultDistance = chkDistance_->isChecked();
    f.distanceText = txtDistance_->text().toStdString();
    f.checkForUpdate = chkEnableCheckForUpdate_->isChecked();
    for (size_t i = 0; i < f.cameras.size(); ++i) {
        f.cameras[i].selection = cboVideoSource_[i]->currentIndex();
        f.cameras[i].enabled = chkCamEnable_[i]->isChecked();
        f.cameras[i].nickname = txtNickname_[i]->text().toStdString();
    }
    f.aviCapture = optEnableAVI_->isChecked();
    f.codecSelection = cboAviCodecs_->currentIndex();
    f.codec = codec_;
    f.profileSelection = cboWmvProfiles_->currentIndex();
    f.audioSelection = cboAudioSource_->currentIndex();
    return f;
}

void SetupDialog::say(const SetupMessage& message) {
    services_.prompts.message(qtext(message.text), iconOf(message.icon));
}

void SetupDialog::showMarkerColor(std::int32_t color) {
    markerColor_ = color;
    cmdMarkerColor_->setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; }").arg(toQColor(color).name()));
}

void SetupDialog::ConnectPreview(int index, int deviceIndex) {
    if (index < 0 || index >= kCameraCount) {
        return;
    }
    const auto k = static_cast<size_t>(index);
    AppSettings& settings = services_.settings;
    media::CaptureInstance& capture = preview(index);
    capture.SetConnected(false);
    capture.SetVideoDevice(deviceIndex);
    capture.SetCaptureFrameRate(leadingNumber(settings.FrameRate[k]));
    capture.SetConnected(true);
    if (const auto size = parseVideoSize(settings.VideoSize[k])) {
        capture.SetVideoSize(size->width, size->height);
    }
    capture.SetPreview(true);
    showReadBack(index);
    cmdVideoFormatDlg_[k]->setEnabled(capture.Connected() && !capture.VideoModes().empty());
    cmdSourceDlg_[k]->setEnabled(capture.Connected() && !capture.DeviceControls().empty());
}

void SetupDialog::cmdSourceDlg_Click(int index) {
    media::CaptureInstance* capture = &preview(index);
    auto* dialog = new SourceSettingsDialog(
        {[capture] { return capture->DeviceControls(); },
         [capture](unsigned id, int value) { return capture->SetDeviceControl(id, value); }},
        cboVideoSource_[static_cast<size_t>(index)]->currentText(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void SetupDialog::cmdVideoFormatDlg_Click(int index) {
    const auto k = static_cast<size_t>(index);
    media::CaptureInstance& capture = preview(index);
    const media::VideoMode inUse{capture.GetVideoSize(), capture.GetFrameRate(), QString()};
    auto* dialog = new FormatSettingsDialog(capture.VideoModes(), inUse,
                                            cboVideoSource_[k]->currentText(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &FormatSettingsDialog::modeChosen, this,
            [this, index, k](const media::VideoMode& mode) {
                // The choice is asked of the device and what it really gives is kept and shown.
                services_.settings.VideoSize[k] =
                    std::to_string(mode.size.width()) + "x" + std::to_string(mode.size.height());
                services_.settings.FrameRate[k] = Format(mode.frameRate, "0.00");
                ConnectPreview(index, preview(index).VideoDevice());
            });
    dialog->open();
}

void SetupDialog::showReadBack(int index) {
    const auto k = static_cast<size_t>(index);
    AppSettings& settings = services_.settings;
    const media::CaptureInstance& capture = preview(index);
    const QSize size = capture.GetVideoSize();
    // A camera that did not connect reports nothing worth keeping.
    if (!size.isEmpty()) {
        settings.FrameRate[k] = Format(capture.GetFrameRate(), "0.00");
        settings.VideoSize[k] = std::to_string(size.width()) + "x" + std::to_string(size.height());
    }
    lblVidSize_[k]->setText(QStringLiteral("%1x%2").arg(size.width()).arg(size.height()));
    lblFrameRate_[k]->setText(QString::fromStdString(Format(capture.GetFrameRate(), "0.00")) +
                              QStringLiteral("fps"));
}

void SetupDialog::DisconnectPreview(int index) {
    if (index >= 0 && index < kCameraCount) {
        preview(index).SetConnected(false);
    } else if (index == kCameraCount) {
        for (int i = 0; i < kCameraCount; ++i) {
            preview(i).SetConnected(false);
        }
    }
}

void SetupDialog::ConnectTestAudio(int deviceIndex) {
    audio_->SetConnected(false);
    audio_->SetAudioDevice(deviceIndex);
    if (!audio_->SetConnected(true)) {
        services_.prompts.message(QStringLiteral("Error while connecting to audio source!"),
                                  ui::MessageIcon::Critical);
    }
}

void SetupDialog::StopTestAudio() {
    audio_->SetConnected(false);
}

void SetupDialog::cboVideoSource_Click() {
    if (!setupLoaded_) {
        return;
    }
    // Two passes, as a device freed by one row may only open in the next pass.
    for (int pass = 0; pass < 2; ++pass) {
        DisconnectPreview(kCameraCount);
        for (int i = 0; i < kCameraCount; ++i) {
            ConnectPreview(i, cboVideoSource_[static_cast<size_t>(i)]->currentIndex());
        }
    }
}

void SetupDialog::cmdVideoCompression_Click() {
    const QString compressor = cboAviCodecs_->currentText();
    switch (codecSettingsKind(compressor.toStdString())) {
    case CodecSettingsKind::NoCodec:
        services_.prompts.message(QStringLiteral("No codec set"), ui::MessageIcon::Information);
        return;
    case CodecSettingsKind::Nothing:
        return;
    default:
        break;
    }
    auto* dialog = new CodecSettingsDialog(compressor, codec_, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &CodecSettingsDialog::settingsChosen, this,
            [this](const CodecSettings& settings) { codec_ = settings; });
    dialog->open();
}

void SetupDialog::cmdMarkerColor_Click() {
    if (const std::optional<QColor> chosen =
            services_.prompts.chooseColor(toQColor(markerColor_))) {
        showMarkerColor(fromQColor(*chosen));
    }
}

void SetupDialog::cboAudioSource_Click() {
    ConnectTestAudio(cboAudioSource_->currentIndex());
    chkTest_->setChecked(false);
    chkTest_Click(false);
}

void SetupDialog::chkTest_Click(bool on) {
    if (on) {
        audio_->SetConnected(true);
        tmrAudioLevel_->start();
    } else {
        tmrAudioLevel_->stop();
        audio_->SetConnected(false);
        pbAudioLevel_->setValue(0);
    }
}

void SetupDialog::tmrAudioLevel_Timer() {
    pbAudioLevel_->setValue(audio_->AudioLevel());
    pbAudioLevel_->repaint();
}

void SetupDialog::txtNickname_Change(int index) {
    QLineEdit* box = txtNickname_.at(static_cast<size_t>(index));
    const CleanNickname clean = cleanNickname(box->text().toStdString());
    if (!clean.refused) {
        return;
    }
    services_.prompts.message(QString::fromLatin1(kNicknameRefusal), ui::MessageIcon::Exclamation);
    box->setText(qtext(clean.text));
}

void SetupDialog::cmdOK_Click() {
    const SetupAcceptance acceptance = acceptSetupForm(readForm(), services_.settings);
    if (!acceptance.accepted) {
        services_.prompts.message(qtext(acceptance.error), ui::MessageIcon::Exclamation);
        txtDistance_->setFocus();
        return;
    }
    SaveSettings(services_.store, acceptance.accepted->settings, acceptance.accepted->updateCheck);
    releaseDevices();
    setupLoaded_ = false;
    services_.apply(acceptance.accepted->settings);
    QDialog::accept();
}

void SetupDialog::reject() {
    releaseDevices();
    setupLoaded_ = false;
    services_.giveCamerasBack();
    QDialog::reject();
}

void SetupDialog::releaseDevices() {
    if (released_) {
        return;
    }
    released_ = true;
    tmrAudioLevel_->stop();
    StopTestAudio();
    DisconnectPreview(kCameraCount);
}

} // namespace ravelcue::setup
