// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/keyboard_layout.h"

#include "platform/key_codes.h"

QString FixedKeyboardLayout::keyLabel(quint32 keyCode) const {
    return keyName(keyCode);
}
