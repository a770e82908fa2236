#pragma once

#include <QObject>
#include <QString>

// The application-wide hub for the notifications that travel between windows
// which do not know each other.
class AppSignals : public QObject {
    Q_OBJECT

public:
    static AppSignals& instance();

Q_SIGNALS:
    // Just before the gallery popover opens.
    void popoverWillShow();
    // Asks the shell to close the popover and the pill.
    void quillixClosePopover();
    // A new tray icon image file, or an empty path for the built-in icon.
    void customBarIconChanged(const QString& imagePath);

private:
    AppSignals() = default;
};
