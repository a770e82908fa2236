#pragma once

#include <QObject>
#include <memory>

class QSystemTrayIcon;

// The process's one long-lived controller: it owns the tray icon and runs the
// launch sequence.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    AppDelegate();
    ~AppDelegate() override;

    void applicationDidFinishLaunching();

private:
    void buildStatusItem();
    // An empty or unloadable path restores the built-in icon.
    void applyCustomBarIcon(const QString& imagePath);

    std::unique_ptr<QSystemTrayIcon> statusItem_;
};
