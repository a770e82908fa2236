// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/hot_key_manager.h"

#include <QLoggingCategory>
#include <array>
#include <limits>
#include <utility>

#include "platform/hotkey_backend.h"
#include "storage/user_settings.h"

Q_LOGGING_CATEGORY(lcHotkeys, "quillix.hotkeys")

namespace {

// The registered actions by id; captureScreen has no id on purpose.
constexpr std::array<std::pair<quint32, HotkeyAction>, 6> kRegisteredActions{{
    {HotKeyManager::kOpenMenuId, HotkeyAction::openMenu},
    {HotKeyManager::kShowHUDId, HotkeyAction::showHUD},
    {HotKeyManager::kCaptureAreaId, HotkeyAction::captureArea},
    {HotKeyManager::kCaptureWindowId, HotkeyAction::captureWindow},
    {HotKeyManager::kRecordWindowId, HotkeyAction::recordWindow},
    {HotKeyManager::kRecordScreenId, HotkeyAction::recordScreen},
}};

// The X error code for a combination that another client grabbed first.
constexpr int kBadAccessStatus = 10;

bool fitsUnsigned32(qint64 value) {
    return value >= 0 && value <= static_cast<qint64>(std::numeric_limits<quint32>::max());
}

// What a grab sees of a binding: its key and the four known modifiers.
bool sameCombination(const HotkeyBinding& first, const HotkeyBinding& second) {
    constexpr qint64 kKnown =
        KeyModifiers::kSuper | KeyModifiers::kShift | KeyModifiers::kAlt | KeyModifiers::kControl;
    return first.keyCode == second.keyCode &&
           (first.modifiers & kKnown) == (second.modifiers & kKnown);
}

}  // namespace

HotKeyManager::HotKeyManager(HotkeyBackend& backend, const UserSettings& settings, QObject* parent)
    : QObject(parent), backend_(backend), settings_(settings) {}

HotKeyManager::~HotKeyManager() {
    unregisterAll();
}

void HotKeyManager::registerAll() {
    unregisterAll();
    // Queued even though the back end emits on the GUI thread: callbacks open
    // windows and grab the screen, which must not happen inside the native
    // event dispatch that delivered the press.
    pressHandler_ = connect(&backend_, &HotkeyBackend::pressed, this, &HotKeyManager::dispatch,
                            Qt::QueuedConnection);
    const HotkeyConfig config = settings_.hotkeys();
    for (const auto& [id, action] : kRegisteredActions) {
        const HotkeyBinding& binding = config.binding(action);
        registerHotkey(binding.keyCode, binding.modifiers, id);
    }
}

void HotKeyManager::unregisterAll() {
    if (!registered_.isEmpty()) {
        backend_.ungrabAll();
        registered_.clear();
    }
    if (pressHandler_) {
        disconnect(pressHandler_);
        pressHandler_ = {};
    }
}

// A stored mask that does not fit 32 bits can only come from a damaged
// settings file; it fails like any other registration instead of stopping
// the program.
void HotKeyManager::registerHotkey(quint32 keyCode, qint64 modifiers, quint32 id) {
    const HotkeyBinding binding{keyCode, modifiers};
    const int status = fitsUnsigned32(modifiers)
                           ? backend_.grab(id, keyCode, static_cast<quint32>(modifiers))
                           : kInvalidMaskStatus;
    if (status != 0) {
        qCWarning(lcHotkeys).noquote()
            << QStringLiteral("⚠️ Quillix: failed to register hotkey id %1, error %2")
                   .arg(id)
                   .arg(status);
        qCWarning(lcHotkeys).noquote()
            << QStringLiteral("⚠️ Quillix: %1 %2")
                   .arg(displayString(binding), failureReason(binding, status));
        return;
    }
    registered_.append({id, binding});
    qCInfo(lcHotkeys).noquote() << QStringLiteral("✅ Quillix: hotkey %1 registered (id %2)")
                                       .arg(displayString(binding))
                                       .arg(id);
}

// A combination is refused either because it is taken (by another program,
// or by one of our own earlier ids) or because X cannot grab it at all.
QString HotKeyManager::failureReason(const HotkeyBinding& binding, int status) const {
    if (status != kBadAccessStatus) {
        return QStringLiteral("cannot be used as a global hotkey");
    }
    for (const auto& [id, registered] : registered_) {
        if (sameCombination(registered, binding)) {
            return QStringLiteral("is already used by hotkey id %1").arg(id);
        }
    }
    return QStringLiteral("is already held by another program");
}

void HotKeyManager::dispatch(quint32 id) const {
    const std::function<void()>* callback = callbackFor(id);
    if (callback == nullptr || !*callback) {
        return;
    }
    // A copy, so that a callback that replaces or clears itself (or destroys
    // this manager) keeps running on valid state.
    const std::function<void()> run = *callback;
    run();
}

const std::function<void()>* HotKeyManager::callbackFor(quint32 id) const {
    switch (id) {
        case kOpenMenuId:
            return &onTriggered;
        case kShowHUDId:
            return &onShowHUD;
        case kCaptureAreaId:
            return &onCaptureArea;
        case kCaptureWindowId:
            return &onCaptureWindow;
        case kRecordWindowId:
            return &onRecordWindow;
        case kRecordScreenId:
            return &onRecordScreen;
        default:
            return nullptr;
    }
}
