// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/hotkeys_settings_view.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLoggingCategory>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <utility>

#include "platform/keyboard_layout.h"
#include "settings/editable_hotkey_row.h"
#include "settings/key_recorder_view.h"
#include "settings/settings_services.h"
#include "settings/video_hotkey_row.h"
#include "storage/user_settings.h"
#include "widgets/widget_style.h"

namespace {

const QColor kRed(0xd9, 0x30, 0x25);

QString rowLabel(HotkeyAction action) {
    switch (action) {
        case HotkeyAction::openMenu:
            return QStringLiteral("Open Quillix menu");
        case HotkeyAction::showHUD:
            return QStringLiteral("Show capture HUD");
        case HotkeyAction::captureArea:
            return QStringLiteral("Capture area");
        case HotkeyAction::captureWindow:
            return QStringLiteral("Capture window");
        case HotkeyAction::captureScreen:
            return QStringLiteral("Capture fullscreen");
        case HotkeyAction::recordWindow:
            return QStringLiteral("Record window");
        case HotkeyAction::recordScreen:
            return QStringLiteral("Record full screen");
    }
    return {};
}

VideoHotkeyRow::Text videoRowText(HotkeyAction action) {
    if (action == HotkeyAction::recordWindow) {
        return {rowLabel(action), QStringLiteral("Pick any open window and record it"),
                QStringLiteral("record.circle")};
    }
    return {rowLabel(action), QStringLiteral("Record your entire main display"),
            QStringLiteral("record.circle.fill")};
}

bool isVideoAction(HotkeyAction action) {
    return action == HotkeyAction::recordWindow || action == HotkeyAction::recordScreen;
}

QLabel* textLabel(const QString& text, int pixelSize, QFont::Weight weight, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setAccessibleName(text);
    label->setFont(widget_style::font(label->font(), pixelSize, weight));
    return label;
}

}  // namespace

HotkeysSettingsView::HotkeysSettingsView(UserSettings& settings, const KeyboardLayout& layout,
                                         HotkeyGrabPause grabPause, QWidget* parent)
    : QWidget(parent), settings_(settings), layout_(layout), grabPause_(std::move(grabPause)) {
    setAccessibleName(QStringLiteral("Hotkeys section"));
    auto* scroll = new QScrollArea(this);
    scroll->setAccessibleName(QStringLiteral("Hotkeys settings"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(buildContent());
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(scroll);

    connect(&settings, &UserSettings::hotkeysChanged, this, &HotkeysSettingsView::showBindings);
}

HotkeysSettingsView::~HotkeysSettingsView() {
    // The rows go with this widget; only the grabs need to come back.
    recording_.reset();
    resumeGrabs();
}

QWidget* HotkeysSettingsView::buildContent() {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(24, 16, 24, 8);
    column->setSpacing(4);
    column->addWidget(textLabel(QStringLiteral("Hotkeys"), 22, QFont::Bold, content));
    column->addSpacing(6);
    column->addWidget(
        buildGroup(QStringLiteral("Menu"), {HotkeyAction::openMenu, HotkeyAction::showHUD}));
    column->addWidget(buildGroup(
        QStringLiteral("Capture"),
        {HotkeyAction::captureArea, HotkeyAction::captureWindow, HotkeyAction::captureScreen}));
    column->addWidget(buildGroup(QStringLiteral("Video Recording"),
                                 {HotkeyAction::recordWindow, HotkeyAction::recordScreen}));

    QLabel* legend =
        textLabel(QStringLiteral("⌘ Super · ⌥ Alt · ⌃ Ctrl · ⇧ Shift"), 11, QFont::Normal, content);
    QPalette faint = legend->palette();
    faint.setColor(QPalette::WindowText, widget_style::secondary(faint));
    legend->setPalette(faint);
    // The legend and the reset share the last line, so the whole section
    // fits the window without scrolling.
    auto* lastLine = new QHBoxLayout;
    lastLine->addWidget(legend);
    lastLine->addStretch(1);
    column->addLayout(lastLine);

    resetButton_ = new QPushButton(QStringLiteral("Reset to defaults"), content);
    resetButton_->setAccessibleName(QStringLiteral("Reset to defaults"));
    resetButton_->setFlat(true);
    resetButton_->setCursor(Qt::PointingHandCursor);
    QPalette red = resetButton_->palette();
    red.setColor(QPalette::ButtonText, kRed);
    resetButton_->setPalette(red);
    connect(resetButton_, &QPushButton::clicked, this, &HotkeysSettingsView::resetAll);
    lastLine->addWidget(resetButton_);
    column->addStretch(1);
    return content;
}

QWidget* HotkeysSettingsView::buildGroup(const QString& title,
                                         const std::vector<HotkeyAction>& actions) {
    auto* group = new QWidget;
    group->setAccessibleName(title);
    auto* column = new QVBoxLayout(group);
    column->setContentsMargins(0, 6, 0, 6);
    column->setSpacing(4);
    column->addWidget(textLabel(title, 13, QFont::DemiBold, group));

    auto* box = new QFrame(group);
    box->setAccessibleName(title);
    box->setFrameShape(QFrame::StyledPanel);
    auto* rows = new QVBoxLayout(box);
    rows->setContentsMargins(0, 2, 0, 2);
    rows->setSpacing(0);
    const HotkeyConfig& hotkeys = settings_.hotkeys();
    for (const HotkeyAction action : actions) {
        if (isVideoAction(action)) {
            auto* row =
                new VideoHotkeyRow(videoRowText(action), hotkeys.binding(action), layout_, box);
            addRow(action, row->recorder());
            rows->addWidget(row);
        } else {
            auto* row =
                new EditableHotkeyRow(rowLabel(action), hotkeys.binding(action), layout_, box);
            addRow(action, row->recorder());
            rows->addWidget(row);
        }
    }
    column->addWidget(box);
    return group;
}

void HotkeysSettingsView::addRow(HotkeyAction action, KeyRecorderView* recorder) {
    recorders_[action] = recorder;
    connect(recorder, &KeyRecorderView::recordRequested, this,
            [this, action] { startRecording(action); });
    connect(recorder, &KeyRecorderView::captured, this,
            [this, action](const HotkeyBinding& binding) { record(action, binding); });
    connect(recorder, &KeyRecorderView::cancelled, this, [this, action] {
        if (recording_ == action) {
            stopRecording();
        }
    });
    connect(recorder, &KeyRecorderView::resetRequested, this,
            [this, action] { resetToDefault(action); });
}

KeyRecorderView* HotkeysSettingsView::recorder(HotkeyAction action) const {
    const auto found = recorders_.find(action);
    return found == recorders_.end() ? nullptr : found->second;
}

void HotkeysSettingsView::startRecording(HotkeyAction action) {
    if (recording_ == action) {
        return;
    }
    // Switching rows leaves the first one as it was and the grabs paused.
    if (recording_) {
        const HotkeyAction previous = *recording_;
        recording_ = action;
        recorder(previous)->setRecording(false);
    } else {
        recording_ = action;
        pauseGrabs();
    }
    recorder(action)->setRecording(true);
}

void HotkeysSettingsView::stopRecording() {
    if (!recording_) {
        return;
    }
    const HotkeyAction action = *recording_;
    recording_.reset();
    recorder(action)->setRecording(false);
    resumeGrabs();
}

void HotkeysSettingsView::record(HotkeyAction action, const HotkeyBinding& binding) {
    if (recording_ != action) {
        return;
    }
    qCInfo(lcSettings).noquote() << "Quillix: recorded" << displayString(binding) << "for"
                                 << jsonKey(action);
    // Saved before the grabs resume, so they are taken with the new binding.
    settings_.setHotkey(action, binding);
    stopRecording();
}

void HotkeysSettingsView::resetToDefault(HotkeyAction action) {
    settings_.setHotkey(action, HotkeyConfig::defaults().binding(action));
    stopRecording();
}

void HotkeysSettingsView::resetAll() {
    settings_.setHotkeys(HotkeyConfig::defaults());
    stopRecording();
}

void HotkeysSettingsView::showBindings(const HotkeyConfig& hotkeys) {
    for (const auto& [action, recorder] : recorders_) {
        recorder->setBinding(hotkeys.binding(action));
    }
}

void HotkeysSettingsView::hideEvent(QHideEvent* event) {
    stopRecording();
    QWidget::hideEvent(event);
}

void HotkeysSettingsView::pauseGrabs() {
    if (grabsPaused_) {
        return;
    }
    grabsPaused_ = true;
    if (grabPause_.pause) {
        grabPause_.pause();
    }
}

void HotkeysSettingsView::resumeGrabs() {
    if (!grabsPaused_) {
        return;
    }
    grabsPaused_ = false;
    if (grabPause_.resume) {
        grabPause_.resume();
    }
}
