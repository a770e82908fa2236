// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <QWidget>

// The small floating card shown while an update archive downloads: a busy
// indicator and "Downloading Quillix <version>…". It never takes the focus
// and there is nothing to click; the installer closes it when the download
// ends.
class DownloadProgressPanel : public QWidget {
    Q_OBJECT

public:
    static constexpr int kWidth = 280;
    static constexpr int kHeight = 80;

    explicit DownloadProgressPanel(const QString& version, QWidget* parent = nullptr);

    static QString message(const QString& version);

    // Centres the panel on the usable area of the screen under the pointer
    // and shows it without activating it. False when there is no screen.
    bool showCentred();
};
