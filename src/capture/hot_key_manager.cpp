#include "capture/hot_key_manager.h"

#include <array>
#include <limits>
#include <utility>

#include "app/diagnostics.h"
#include "platform/hotkey_backend.h"
#include "storage/user_settings.h"

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

bool fitsUnsigned32(qint64 value) {
    return value >= 0 && value <= static_cast<qint64>(std::numeric_limits<quint32>::max());
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
    if (!registeredIds_.isEmpty()) {
        backend_.ungrabAll();
        registeredIds_.clear();
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
    const int status = fitsUnsigned32(modifiers)
                           ? backend_.grab(id, keyCode, static_cast<quint32>(modifiers))
                           : kInvalidMaskStatus;
    if (status != 0) {
        printDiagnostic(QStringLiteral("⚠️ Quillix: failed to register hotkey id %1, error %2")
                            .arg(id)
                            .arg(status));
        return;
    }
    registeredIds_.append(id);
    printDiagnostic(QStringLiteral("✅ Quillix: hotkey %1 registered (id %2)")
                        .arg(displayString(HotkeyBinding{keyCode, modifiers}))
                        .arg(id));
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
