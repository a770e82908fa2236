// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// One data store saved over and over until the kill test kills it, or opened
// once to say which document its file holds.
//
//   store_save_loop save STORE FOLDER   saves state after state, printing the
//                                       number of each state once saved
//   store_save_loop read STORE FOLDER   prints the number of the state the
//                                       store opened, or "none"
//
// STORE is settings, registry, metadata or shelves. Each state is a number
// that the store's document holds in its own words: the last shelf folder,
// which of a ring of files is the recorded capture, an event's title, a
// shelf's name.

#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>

#include "library/capture_registry.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/shelf_store.h"
#include "storage/user_settings.h"

namespace {

// The registry's states go round a ring of files, so its document stays small.
constexpr int kRingSize = 64;

using State = std::optional<long long>;

State numberAfter(const QString& text, const QString& prefix) {
    if (!text.startsWith(prefix)) {
        return std::nullopt;
    }
    bool ok = false;
    const long long number = text.mid(prefix.size()).toLongLong(&ok);
    return ok ? State(number) : std::nullopt;
}

// Printed with write(2): the line is out before the next save starts, with
// no stdio buffer that a kill could lose.
void announce(long long state) {
    const QByteArray line = QByteArray::number(state) + '\n';
    if (::write(STDOUT_FILENO, line.constData(), static_cast<size_t>(line.size())) < 0) {
        std::_Exit(1);
    }
}

// Saves forever: `save(n)` stores state n.
[[noreturn]] void saveForever(State current, const std::function<void(long long)>& save) {
    for (long long state = current.value_or(-1) + 1;; ++state) {
        save(state);
        announce(state);
    }
}

struct StoreLoop {
    std::function<State()> read;
    std::function<void(long long)> save;
};

StoreLoop settingsLoop(const QString& folder) {
    auto settings = std::make_shared<UserSettings>(folder, QString());
    const QString prefix = QStringLiteral("/shelves/");
    return {
        [=] { return numberAfter(settings->lastShelfLocation().value_or(QString()), prefix); },
        [=](long long state) { settings->setLastShelfLocation(prefix + QString::number(state)); }};
}

QString ringFile(const QString& folder, long long state) {
    return QDir(folder).filePath(QStringLiteral("ring/%1").arg(state % kRingSize));
}

StoreLoop registryLoop(const QString& folder) {
    QDir(folder).mkpath(QStringLiteral("ring"));
    for (int index = 0; index < kRingSize; ++index) {
        QFile file(ringFile(folder, index));
        if (!file.exists() && file.open(QIODevice::WriteOnly)) {
            file.close();
        }
    }
    auto registry = std::make_shared<CaptureRegistry>(folder, QString());
    auto read = [=]() -> State {
        for (int index = 0; index < kRingSize; ++index) {
            if (registry->contains(CaptureRegistry::inodeOf(ringFile(folder, index)).value_or(0))) {
                return index;
            }
        }
        return std::nullopt;
    };
    return {read, [=](long long state) {
                if (state == 0) {
                    registry->record(ringFile(folder, 0));
                } else {
                    registry->moveRecord(*CaptureRegistry::inodeOf(ringFile(folder, state - 1)),
                                         ringFile(folder, state));
                }
            }};
}

StoreLoop metadataLoop(const QString& folder) {
    auto metadata = std::make_shared<ScreenshotMetadataStore>(folder);
    const QString picture = QDir(folder).filePath(QStringLiteral("Screenshot.png"));
    const QString prefix = QStringLiteral("Event ");
    return {[=] {
                const auto event = metadata->recordFor(picture).event;
                return event ? numberAfter(event->title, prefix) : std::nullopt;
            },
            [=](long long state) {
                metadata->setEvent(ScreenshotEvent{prefix + QString::number(state), QString()},
                                   picture);
            }};
}

// A kill between a shelf's folder rename and the save leaves the folder one
// name ahead of the file; the loop puts it back before it goes on, since the
// test is about the file.
void matchFolderToFile(const ShelfItem& shelf, const State& state) {
    if (state && !QFileInfo::exists(shelf.folderPath)) {
        const QString ahead =
            QDir(QFileInfo(shelf.folderPath).path())
                .filePath(ShelfStore::folderName(QStringLiteral("Shelf %1").arg(*state + 1)));
        QDir().rename(ahead, shelf.folderPath);
    }
}

// The shelves' store and the settings it keeps its last folder in; the
// store goes first.
struct ShelvesAndSettings {
    explicit ShelvesAndSettings(const QString& folder)
        : settings(QDir(folder).filePath(QStringLiteral("settings")), QString()),
          store(folder, QString(), settings, QDir(folder).filePath(QStringLiteral("parent"))) {}
    UserSettings settings;
    ShelfStore store;
};

StoreLoop shelvesLoop(const QString& folder) {
    const auto both = std::make_shared<ShelvesAndSettings>(folder);
    ShelfStore* shelves = &both->store;
    const QString prefix = QStringLiteral("Shelf ");
    auto read = [=]() -> State {
        (void)both;  // keeps the stores alive as long as the loop
        return shelves->shelves().isEmpty() ? std::nullopt
                                            : numberAfter(shelves->shelves().first().name, prefix);
    };
    return {read, [=](long long state) {
                const QString name = prefix + QString::number(state);
                if (shelves->shelves().isEmpty()) {
                    shelves->createShelf(name);
                    return;
                }
                matchFolderToFile(shelves->shelves().first(), read());
                if (const auto error = shelves->renameShelf(shelves->shelves().first().id, name)) {
                    std::fprintf(stderr, "rename failed: %s\n", qPrintable(error->description()));
                    std::_Exit(1);
                }
            }};
}

std::optional<StoreLoop> loopFor(const QString& store, const QString& folder) {
    if (store == QLatin1String("settings")) {
        return settingsLoop(folder);
    }
    if (store == QLatin1String("registry")) {
        return registryLoop(folder);
    }
    if (store == QLatin1String("metadata")) {
        return metadataLoop(folder);
    }
    if (store == QLatin1String("shelves")) {
        return shelvesLoop(folder);
    }
    return std::nullopt;
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const std::optional<StoreLoop> loop =
        arguments.size() == 4 ? loopFor(arguments.at(2), arguments.at(3)) : std::nullopt;
    if (!loop ||
        (arguments.at(1) != QLatin1String("save") && arguments.at(1) != QLatin1String("read"))) {
        std::fprintf(stderr, "usage: store_save_loop save|read STORE FOLDER\n");
        return 2;
    }
    const State state = loop->read();
    if (arguments.at(1) == QLatin1String("save")) {
        saveForever(state, loop->save);
    }
    std::printf("%s\n", state ? qPrintable(QString::number(*state)) : "none");
    return 0;
}
