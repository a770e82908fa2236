// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include <gtest/gtest.h>

#include <QApplication>

// GoogleTest cases that show windows on the test desktop.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // Listing the tests happens without a desktop.
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
