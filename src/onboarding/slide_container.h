// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <QWidget>

class EntranceAnimation;
class QLabel;
class QVBoxLayout;

// What a slide shows above its optional extra part.
struct SlideContent {
    // A bundled symbol name ("keyboard"), or empty when `imagePath` is used.
    QString symbol;
    // A picture of the program's resources (":/icons/Logo.svg"), drawn larger.
    QString imagePath;
    QString title;
    // May hold "\n" line breaks.
    QString text;
};

// One welcome slide: its symbol or picture, title and text centred one under
// the other, then an optional extra part (a button, a list). Each time it is
// shown its parts enter one after another.
class SlideContainer : public QWidget {
    Q_OBJECT

public:
    static constexpr int kSymbolSize = 52;
    static constexpr int kImageSize = 84;

    explicit SlideContainer(const SlideContent& content, QWidget* parent = nullptr);

    QString title() const;
    QLabel* textLabel() const { return text_; }

protected:
    // Puts `extra` under the text. Called at most once, before the slide is
    // first shown.
    void setExtra(QWidget* extra);
    // Lets the extra part appear again after its content changed.
    void replayExtraEntrance();

    void showEvent(QShowEvent* event) override;

private:
    QVBoxLayout* layout_ = nullptr;
    QLabel* symbol_ = nullptr;
    QLabel* title_ = nullptr;
    QLabel* text_ = nullptr;
    QWidget* extra_ = nullptr;
    EntranceAnimation* entrance_ = nullptr;
};
