// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/download_progress_panel.h"

#include <QCursor>
#include <QFont>
#include <QGraphicsDropShadowEffect>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>

namespace {

constexpr int kTextPixels = 12;
constexpr int kShadowMargin = 8;

}  // namespace

DownloadProgressPanel::DownloadProgressPanel(const QString& version, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                          Qt::WindowDoesNotAcceptFocus) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedSize(kWidth, kHeight);
    const QString text = message(version);
    setWindowTitle(text);
    setAccessibleName(text);

    // The card sits inside a transparent margin so that its shadow shows.
    auto* card = new QWidget(this);
    card->setObjectName(QStringLiteral("downloadCard"));
    card->setAttribute(Qt::WA_StyledBackground);
    card->setStyleSheet(
        QStringLiteral("#downloadCard { background: palette(window);"
                       " border-radius: 10px; }"));
    auto* shadow = new QGraphicsDropShadowEffect(card);
    shadow->setBlurRadius(kShadowMargin * 2);
    shadow->setOffset(0, 2);
    card->setGraphicsEffect(shadow);

    auto* spinner = new QProgressBar(card);
    spinner->setRange(0, 0);  // busy: the download's size is not shown
    spinner->setTextVisible(false);
    spinner->setFixedWidth(48);
    spinner->setAccessibleName(QStringLiteral("Download progress"));

    auto* label = new QLabel(text, card);
    QFont font = label->font();
    font.setPixelSize(kTextPixels);
    label->setFont(font);
    label->setAccessibleName(text);

    auto* row = new QHBoxLayout(card);
    row->addWidget(spinner);
    row->addWidget(label, 1);
    auto* outer = new QHBoxLayout(this);
    outer->setContentsMargins(kShadowMargin, kShadowMargin, kShadowMargin, kShadowMargin);
    outer->addWidget(card);
}

QString DownloadProgressPanel::message(const QString& version) {
    return QStringLiteral("Downloading Quillix ") + version + QChar(0x2026);
}

bool DownloadProgressPanel::showCentred() {
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen == nullptr) {
        return false;
    }
    const QPoint centre = screen->availableGeometry().center();
    move(centre.x() - kWidth / 2, centre.y() - kHeight / 2);
    show();
    return true;
}
