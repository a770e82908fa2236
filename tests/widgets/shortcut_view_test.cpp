// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/shortcut_view.h"

#include <QLabel>
#include <QtTest>

#include "platform/keyboard_layout.h"

// A layout that labels every key "Ж", to tell layout labels from fixed names.
class CyrillicLayout : public KeyboardLayout {
public:
    QString keyLabel(quint32) const override { return QStringLiteral("Ж"); }
};

class ShortcutViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void glyphsComeInViewOrderThenTheLayoutsLabel() {
        CyrillicLayout layout;
        const qint64 all = KeyModifiers::kSuper | KeyModifiers::kShift | KeyModifiers::kAlt |
                           KeyModifiers::kControl;
        ShortcutView view({6, all}, layout);
        QCOMPARE(view.shownText(), QStringLiteral("⌘⇧⌥⌃Ж"));
        // Screen readers and tooltips get the text form with the fixed key name.
        QCOMPARE(view.accessibleName(), QStringLiteral("⌃⌥⇧⌘Z"));
        QCOMPARE(view.toolTip(), view.accessibleName());
    }

    void onlyTheSetModifiersAreShown() {
        FixedKeyboardLayout layout;
        ShortcutView view({18, KeyModifiers::kShift | KeyModifiers::kSuper}, layout);
        QCOMPARE(view.shownText(), QStringLiteral("⌘⇧1"));
        ShortcutView bare({53, 0}, layout);
        QCOMPARE(bare.shownText(), QStringLiteral("(53)"));
    }

    void keyLabelIsLargerThanTheGlyphsAndMonospaced() {
        FixedKeyboardLayout layout;
        ShortcutView view({19, KeyModifiers::kSuper}, layout);
        const auto labels = view.findChildren<QLabel*>();
        QCOMPARE(labels.size(), 2);
        QCOMPARE(labels.at(0)->font().pointSize(), 9);
        QCOMPARE(labels.at(1)->font().pointSize(), 10);
        QVERIFY(labels.at(1)->font().styleHint() == QFont::Monospace);
        for (const QLabel* label : labels) {
            QVERIFY(!label->accessibleName().isEmpty());
        }
    }
};

QTEST_MAIN(ShortcutViewTest)
#include "shortcut_view_test.moc"
