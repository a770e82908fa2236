// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QSize>
#include <QString>
#include <memory>

#include "settings/settings_services.h"

class QWidget;
class SettingsView;

// Owns the "Settings" window: made at its first showing and reused after,
// 800 × 500 and not resizable, its position remembered across runs.
class SettingsWindowController : public QObject {
    Q_OBJECT

public:
    static constexpr QSize kContentSize{800, 500};
    static inline const QString kFrameName = QStringLiteral("SettingsWindow");

    explicit SettingsWindowController(SettingsServices services, QObject* parent = nullptr);
    ~SettingsWindowController() override;

    // Shows the window in front, with the keyboard.
    void show();

    // Null until the first show().
    QWidget* window() const { return window_.get(); }
    SettingsView* view() const { return view_; }

Q_SIGNALS:
    // The tray icon should now show `path` (the built-in icon when empty).
    void customBarIconChanged(const QString& path);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildWindow();
    void placeWindow();
    void rememberFrame();

    SettingsServices services_;
    std::unique_ptr<QWidget> window_;
    SettingsView* view_ = nullptr;
};
