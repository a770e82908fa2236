#include "platform/keyboard_layout.h"

#include "storage/hotkey_binding.h"

QString FixedKeyboardLayout::keyLabel(quint32 keyCode) const {
    return keyName(keyCode);
}
