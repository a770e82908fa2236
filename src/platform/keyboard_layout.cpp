#include "platform/keyboard_layout.h"

#include "platform/key_codes.h"

QString FixedKeyboardLayout::keyLabel(quint32 keyCode) const {
    return keyName(keyCode);
}
