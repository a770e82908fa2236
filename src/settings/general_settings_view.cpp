// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/general_settings_view.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSlider>
#include <QThreadPool>
#include <QTimer>
#include <cmath>

#include "platform/autostart_entry.h"
#include "platform/desktop_settings.h"
#include "platform/notifier.h"
#include "settings/permission_row.h"
#include "settings/settings_group.h"
#include "storage/preferences.h"
#include "storage/user_settings.h"

namespace {

constexpr int kAutoDismissMinimum = 3;
constexpr int kAutoDismissMaximum = 15;
constexpr int kSliderWidth = 120;
constexpr int kValueLabelWidth = 28;
constexpr int kIconPreviewSize = 18;
// A permission granted in the desktop's settings shows up a moment later.
constexpr int kRefreshAfterGrantMs = 1000;

const QString kOnlyQuillixOn =
    QStringLiteral("Only screenshots and recordings captured by Quillix are shown.");
const QString kOnlyQuillixOff = QStringLiteral(
    "All PNG, MP4, and MOV files on your Desktop and in ~/Pictures/Screenshots will appear in the "
    "gallery.");

QCheckBox* makeToggle(const QString& label, bool checked) {
    auto* toggle = new QCheckBox(label);
    toggle->setChecked(checked);
    toggle->setAccessibleName(label);
    // As wide as its box and label: a click beside them would do nothing.
    toggle->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    return toggle;
}

QStringList iconNameFilters() {
    QStringList patterns{QStringLiteral("*.png"), QStringLiteral("*.jpg"), QStringLiteral("*.jpeg"),
                         QStringLiteral("*.svg")};
    if (QImageReader::supportedImageFormats().contains("icns")) {
        patterns << QStringLiteral("*.icns");
    }
    return {QStringLiteral("Images (%1)").arg(patterns.join(QLatin1Char(' ')))};
}

}  // namespace

GeneralSettingsView::GeneralSettingsView(const SettingsServices& services, QWidget* parent)
    : SettingsPage(QStringLiteral("General"), parent), services_(services) {
    addBehaviourGroup();
    addRecentScreenshotsGroup();
    addIconGroup();
    addUpdatesGroup();
    addPermissionsGroup();
    finish();
    connect(&services_.notifier, &Notifier::authorisationChanged, this,
            &GeneralSettingsView::refreshPermissions);
    connect(&services_.preferences, &Preferences::valueChanged, this,
            &GeneralSettingsView::showPreferences);
}

void GeneralSettingsView::showPreferences() {
    const Preferences& preferences = services_.preferences;
    const auto show = [](QCheckBox* toggle, bool checked) {
        const QSignalBlocker quiet(toggle);
        toggle->setChecked(checked);
    };
    show(launchAtLogin_, preferences.launchAtLogin());
    show(showHUD_, preferences.showHUDOnCapture());
    show(checkForUpdates_, preferences.checkForUpdatesAutomatically());
    showAutoDismiss();
}

void GeneralSettingsView::addBehaviourGroup() {
    Preferences& preferences = services_.preferences;
    SettingsGroup* group = addGroup(QStringLiteral("Behaviour"));
    launchAtLogin_ = makeToggle(QStringLiteral("Launch at login"), preferences.launchAtLogin());
    connect(launchAtLogin_, &QCheckBox::toggled, this, &GeneralSettingsView::setLaunchAtLogin);
    group->addRow(launchAtLogin_);

    showHUD_ = makeToggle(QStringLiteral("Show HUD after capture"), preferences.showHUDOnCapture());
    connect(showHUD_, &QCheckBox::toggled, &preferences, &Preferences::setShowHUDOnCapture);
    group->addRow(showHUD_);

    auto* dismiss = new QWidget;
    auto* dismissLayout = new QHBoxLayout(dismiss);
    dismissLayout->setContentsMargins(0, 0, 0, 0);
    autoDismiss_ = new QSlider(Qt::Horizontal, dismiss);
    autoDismiss_->setRange(kAutoDismissMinimum, kAutoDismissMaximum);
    autoDismiss_->setSingleStep(1);
    autoDismiss_->setPageStep(1);
    autoDismiss_->setFixedWidth(kSliderWidth);
    autoDismiss_->setAccessibleName(QStringLiteral("Auto-dismiss after"));
    autoDismissLabel_ = new QLabel(dismiss);
    autoDismissLabel_->setFixedWidth(kValueLabelWidth);
    dismissLayout->addWidget(autoDismiss_);
    dismissLayout->addWidget(autoDismissLabel_);
    showAutoDismiss();
    connect(autoDismiss_, &QSlider::valueChanged, this, [this](int seconds) {
        services_.preferences.setAutoDismissSeconds(seconds);
        autoDismissLabel_->setText(QStringLiteral("%1s").arg(seconds));
    });
    group->addLabelledRow(QStringLiteral("Auto-dismiss after"), dismiss);
}

void GeneralSettingsView::showAutoDismiss() {
    const int seconds =
        std::clamp(static_cast<int>(std::lround(services_.preferences.autoDismissSeconds())),
                   kAutoDismissMinimum, kAutoDismissMaximum);
    const QSignalBlocker quiet(autoDismiss_);
    autoDismiss_->setValue(seconds);
    autoDismissLabel_->setText(QStringLiteral("%1s").arg(seconds));
}

void GeneralSettingsView::setLaunchAtLogin(bool enabled) {
    services_.preferences.setLaunchAtLogin(enabled);
    // A failure is only logged: the toggle keeps what the user chose.
    const bool done = enabled ? services_.autostart.enable() : services_.autostart.disable();
    if (!done) {
        qCWarning(lcSettings).noquote()
            << QStringLiteral("⚠️ Quillix: could not %1 the autostart entry %2")
                   .arg(enabled ? QStringLiteral("write") : QStringLiteral("remove"),
                        services_.autostart.path());
    }
}

void GeneralSettingsView::addRecentScreenshotsGroup() {
    SettingsGroup* group = addGroup(QStringLiteral("Recent Screenshots"));
    auto* row = new QWidget;
    auto* layout = new QVBoxLayout(row);
    layout->setContentsMargins(0, 6, 0, 6);
    onlyQuillix_ = makeToggle(QStringLiteral("Show only Quillix captures"),
                              services_.settings.showOnlyQuillixItems());
    onlyQuillixCaption_ = new QLabel(row);
    onlyQuillixCaption_->setWordWrap(true);
    QFont caption = onlyQuillixCaption_->font();
    caption.setPixelSize(11);
    onlyQuillixCaption_->setFont(caption);
    layout->addWidget(onlyQuillix_);
    layout->addWidget(onlyQuillixCaption_);
    group->addRow(row);
    showOnlyQuillixCaption();
    connect(onlyQuillix_, &QCheckBox::toggled, &services_.settings,
            &UserSettings::setShowOnlyQuillixItems);
    connect(&services_.settings, &UserSettings::showOnlyQuillixItemsChanged, this, [this] {
        const QSignalBlocker quiet(onlyQuillix_);
        onlyQuillix_->setChecked(services_.settings.showOnlyQuillixItems());
        showOnlyQuillixCaption();
    });
}

void GeneralSettingsView::showOnlyQuillixCaption() {
    onlyQuillixCaption_->setText(services_.settings.showOnlyQuillixItems() ? kOnlyQuillixOn
                                                                           : kOnlyQuillixOff);
    onlyQuillixCaption_->setAccessibleName(onlyQuillixCaption_->text());
}

void GeneralSettingsView::addIconGroup() {
    SettingsGroup* group = addGroup(QStringLiteral("Tray Icon"));
    auto* trailing = new QWidget;
    auto* layout = new QHBoxLayout(trailing);
    layout->setContentsMargins(0, 0, 0, 0);
    iconPreview_ = new QLabel(trailing);
    iconPreview_->setFixedSize(kIconPreviewSize, kIconPreviewSize);
    iconPreview_->setAccessibleName(QStringLiteral("Custom tray icon preview"));
    resetIcon_ = new QPushButton(QStringLiteral("Reset"), trailing);
    resetIcon_->setAccessibleName(QStringLiteral("Reset tray icon"));
    auto* choose = new QPushButton(QStringLiteral("Choose Icon…"), trailing);
    choose->setAccessibleName(QStringLiteral("Choose Icon…"));
    layout->addWidget(iconPreview_);
    layout->addWidget(resetIcon_);
    layout->addWidget(choose);
    group->addLabelledRow(QStringLiteral("Custom tray icon"), trailing);
    connect(resetIcon_, &QPushButton::clicked, this, &GeneralSettingsView::resetIcon);
    connect(choose, &QPushButton::clicked, this, &GeneralSettingsView::openIconDialog);
    showCustomIcon();
}

void GeneralSettingsView::showCustomIcon() {
    const QString path = services_.preferences.customAppIconPath();
    QImageReader reader(path);
    reader.setScaledSize(QSize(kIconPreviewSize, kIconPreviewSize) * devicePixelRatioF());
    QImage image = path.isEmpty() ? QImage() : reader.read();
    const bool shown = !image.isNull();
    if (shown) {
        image.setDevicePixelRatio(devicePixelRatioF());
        iconPreview_->setPixmap(QPixmap::fromImage(image));
    }
    iconPreview_->setVisible(shown);
    resetIcon_->setVisible(shown);
}

void GeneralSettingsView::openIconDialog() {
    auto* dialog = new QFileDialog(window(), QStringLiteral("Choose Icon"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters(iconNameFilters());
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("Choose"));
    dialog->setAccessibleName(QStringLiteral("Choose Icon"));
    connect(dialog, &QFileDialog::fileSelected, this, &GeneralSettingsView::chooseIcon);
    dialog->open();
}

std::optional<QString> GeneralSettingsView::copyCustomIcon(const QString& chosenFile,
                                                           const QString& folder) {
    const QString target =
        folder + QStringLiteral("/custom_bar_icon.") + QFileInfo(chosenFile).suffix();
    if (!QDir().mkpath(folder)) {
        return std::nullopt;
    }
    if (QFileInfo(chosenFile).canonicalFilePath() == QFileInfo(target).canonicalFilePath()) {
        return target;  // chosen again from where an earlier choice put it
    }
    // Copied beside the target first: a failed copy leaves the icon in use.
    const QString partial = target + QStringLiteral(".part");
    QFile::remove(partial);
    if (!QFile::copy(chosenFile, partial)) {
        return std::nullopt;
    }
    QFile::remove(target);
    if (!QFile::rename(partial, target)) {
        QFile::remove(partial);
        return std::nullopt;
    }
    return target;
}

void GeneralSettingsView::chooseIcon(const QString& file) {
    QPointer<GeneralSettingsView> self(this);
    const QString folder = services_.iconFolder;
    QThreadPool::globalInstance()->start([self, file, folder] {
        const std::optional<QString> copy = copyCustomIcon(file, folder);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, file, copy] {
                if (!self) {
                    return;
                }
                if (!copy) {
                    qCWarning(lcSettings).noquote()
                        << QStringLiteral("⚠️ Quillix: could not copy the icon %1").arg(file);
                    return;
                }
                self->services_.preferences.setCustomAppIconPath(*copy);
                self->showCustomIcon();
                Q_EMIT self->customBarIconChanged(*copy);
            },
            Qt::QueuedConnection);
    });
}

void GeneralSettingsView::resetIcon() {
    services_.preferences.setCustomAppIconPath(QString());
    showCustomIcon();
    Q_EMIT customBarIconChanged(QString());
}

void GeneralSettingsView::addUpdatesGroup() {
    SettingsGroup* group = addGroup(QStringLiteral("Updates"));
    checkForUpdates_ = makeToggle(QStringLiteral("Check for updates automatically"),
                                  services_.preferences.checkForUpdatesAutomatically());
    connect(checkForUpdates_, &QCheckBox::toggled, &services_.preferences,
            &Preferences::setCheckForUpdatesAutomatically);
    group->addRow(checkForUpdates_);
    checkNow_ = new QPushButton(QStringLiteral("Check Now"));
    checkNow_->setAccessibleName(QStringLiteral("Check Now"));
    checkNow_->setEnabled(static_cast<bool>(services_.checkForUpdates));
    if (services_.checkForUpdates) {
        connect(checkNow_, &QPushButton::clicked, this, [this] { services_.checkForUpdates(); });
    } else {
        checkNow_->setToolTip(QStringLiteral("This copy of Quillix cannot update itself"));
    }
    group->addLabelledRow(QStringLiteral("Check for a newer version"), checkNow_);
}

void GeneralSettingsView::addPermissionsGroup() {
    SettingsGroup* group = addGroup(QStringLiteral("Permissions"));
    // Screen capture and global keys need no permission on X11; where a
    // desktop asks for them, it asks by itself at the first use.
    screenRecording_ = new PermissionRow(QStringLiteral("Screen Recording"),
                                         QStringLiteral("camera.on.rectangle"), {});
    std::function<void()> grantNotifications;
    if (DesktopSettings::notificationSettingsCommand()) {
        grantNotifications = [this] { openNotificationSettings(); };
    }
    notifications_ = new PermissionRow(QStringLiteral("Notifications"),
                                       QStringLiteral("bell.badge"), grantNotifications);
    accessibility_ =
        new PermissionRow(QStringLiteral("Accessibility"), QStringLiteral("accessibility"), {});
    group->addRow(screenRecording_);
    group->addRow(notifications_);
    group->addRow(accessibility_);
}

void GeneralSettingsView::openNotificationSettings() {
    if (const std::optional<QStringList> command = DesktopSettings::notificationSettingsCommand()) {
        DesktopSettings::open(*command);
    }
    QTimer::singleShot(kRefreshAfterGrantMs, this, &GeneralSettingsView::refreshPermissions);
}

void GeneralSettingsView::refreshPermissions() {
    screenRecording_->setGranted(services_.screenCaptureGranted &&
                                 services_.screenCaptureGranted());
    accessibility_->setGranted(services_.accessibilityGranted && services_.accessibilityGranted());
    notifications_->setGranted(services_.notifier.isAuthorised());
}

void GeneralSettingsView::showEvent(QShowEvent* event) {
    SettingsPage::showEvent(event);
    refreshPermissions();
    showCustomIcon();
}
