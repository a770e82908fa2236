// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/shelf_store.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QPointer>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "storage/file_move.h"
#include "storage/json_codec.h"

namespace {

Q_LOGGING_CATEGORY(lcShelves, "quillix.shelves")

constexpr auto kFileName = "shelves.bin";
constexpr auto kFolderSuffix = ":shelf";
// How long folder events are gathered before the folders are checked: a
// "rm -r" or a file manager's move sends a burst of them.
constexpr int kSettleMs = 200;

constexpr std::array kMediaExtensions = {"png",  "jpg", "jpeg", "gif", "heic", "tiff", "bmp",
                                         "webp", "mp4", "mov",  "m4v", "avi",  "mkv"};

bool isMediaFile(const QFileInfo& file) {
    const QString suffix = file.suffix();
    return std::any_of(kMediaExtensions.begin(), kMediaExtensions.end(), [&](const char* ext) {
        return suffix.compare(QLatin1String(ext), Qt::CaseInsensitive) == 0;
    });
}

// Anything at all, a dangling link included, takes the name.
bool anythingAt(const QString& path) {
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

// Makes `folder` and any missing parents; the errno value of a failure.
int makeFolder(const QString& folder) {
    std::error_code error;
    std::filesystem::create_directories(
        std::filesystem::path(QFile::encodeName(QFileInfo(folder).absolutePath()).toStdString()),
        error);
    if (error) {
        return error.value();
    }
    return ::mkdir(QFile::encodeName(folder).constData(), 0777) == 0 ? 0 : errno;
}

ShelfError errorFor(int error) {
    return error == EEXIST ? ShelfError::folderExists()
                           : ShelfError::unknown(systemErrorDescription(error));
}

}  // namespace

QString ShelfError::description() const {
    return code_ == Code::folderExists ? QStringLiteral("A shelf with that name already exists.")
                                       : systemDescription_;
}

ShelfStore& ShelfStore::shared() {
    static auto* instance =
        new ShelfStore(dataDirectory(), legacyDataDirectory(), UserSettings::shared(),
                       QStandardPaths::writableLocation(QStandardPaths::DesktopLocation));
    return *instance;
}

ShelfStore::ShelfStore(const QString& directory, const QString& legacyDirectory,
                       UserSettings& settings, const QString& fallbackParent, QObject* parent)
    : QObject(parent),
      file_(directory, QLatin1String(kFileName), legacyDirectory, {QLatin1String(kFileName)}),
      settings_(settings),
      fallbackParent_(fallbackParent) {
    settleTimer_.setSingleShot(true);
    settleTimer_.setInterval(kSettleMs);
    connect(&settleTimer_, &QTimer::timeout, this, &ShelfStore::checkWatchedFolders);
    // The timer is not restarted by later events, so a steady stream of them
    // (captures saved to the Desktop) cannot hold the check off.
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (!settleTimer_.isActive()) {
            settleTimer_.start();
        }
    });
    load();
}

// Moves still running hand their results to a store that is going away;
// waiting here keeps every worker from outliving it.
ShelfStore::~ShelfStore() {
    pool_.waitForDone();
}

std::optional<ShelfItem> ShelfStore::shelf(const QUuid& id) const {
    const qsizetype index = indexOf(id);
    return index < 0 ? std::nullopt : std::optional<ShelfItem>(shelves_.at(index));
}

QString ShelfStore::defaultParentFolder() const {
    const std::optional<QString>& last = settings_.lastShelfLocation();
    return last && !last->isEmpty() ? *last : fallbackParent_;
}

QString ShelfStore::folderName(const QString& shelfName) {
    return shelfName + QLatin1String(kFolderSuffix);
}

std::optional<ShelfError> ShelfStore::createShelf(const QString& name) {
    const QString folder = QDir::cleanPath(QDir(defaultParentFolder()).filePath(folderName(name)));
    if (anythingAt(folder)) {
        return ShelfError::folderExists();
    }
    if (const int error = makeFolder(folder)) {
        return errorFor(error);
    }
    const ShelfItem shelf{QUuid::createUuid(), name, folder, QDateTime::currentDateTimeUtc()};
    shelves_.append(shelf);
    save();
    startWatching(shelf);
    Q_EMIT shelvesChanged();
    return std::nullopt;
}

std::optional<ShelfError> ShelfStore::renameShelf(const QUuid& id, const QString& newName) {
    const qsizetype index = indexOf(id);
    if (index < 0) {
        return std::nullopt;
    }
    if (moving_.contains(id)) {
        return ShelfError::unknown(systemErrorDescription(EBUSY));
    }
    ShelfItem& shelf = shelves_[index];
    const QString newFolder = QDir::cleanPath(
        QDir(QFileInfo(shelf.folderPath).absolutePath()).filePath(folderName(newName)));
    if (anythingAt(newFolder)) {
        return ShelfError::folderExists();
    }
    // A rename in one folder stays on one file system: quick enough here.
    if (const int error = renameWithoutReplacing(shelf.folderPath, newFolder)) {
        return errorFor(error);
    }
    stopWatching(id);
    shelf.name = newName;
    shelf.folderPath = newFolder;
    save();
    startWatching(shelf);
    Q_EMIT shelvesChanged();
    return std::nullopt;
}

void ShelfStore::moveShelf(const QUuid& id, const QString& destination, QObject* context,
                           const MoveFinished& finished) {
    const QPointer<QObject> guard(context);
    auto report = [guard, finished,
                   hasContext = context != nullptr](const std::optional<ShelfError>& error) {
        if (finished && (!hasContext || guard)) {
            finished(error);
        }
    };
    const qsizetype index = indexOf(id);
    if (index < 0 || moving_.contains(id)) {
        const std::optional<ShelfError> error =
            index < 0 ? std::nullopt
                      : std::optional(ShelfError::unknown(systemErrorDescription(EBUSY)));
        QTimer::singleShot(0, this, [report, error] { report(error); });
        return;
    }
    const QString from = QDir::cleanPath(shelves_.at(index).folderPath);
    const QString parent = QDir::cleanPath(QDir(destination).absolutePath());
    MoveOutcome outcome{id, from, parent, QDir(parent).filePath(QFileInfo(from).fileName()), 0};
    // The folder leaving its place must not read as a vanished shelf.
    stopWatching(id);
    moving_.insert(id);
    pool_.start([this, outcome, report]() mutable {
        outcome.error = moveWithoutReplacing(outcome.from, outcome.newFolder);
        QMetaObject::invokeMethod(
            this, [this, outcome, report] { report(finishMove(outcome)); }, Qt::QueuedConnection);
    });
}

std::optional<ShelfError> ShelfStore::finishMove(const MoveOutcome& outcome) {
    moving_.remove(outcome.id);
    const QString endedIn = outcome.error == 0 ? outcome.newFolder : outcome.from;
    if (deletedWhileMoving_.remove(outcome.id)) {
        trashInBackground(endedIn);
    }
    const qsizetype index = indexOf(outcome.id);
    if (index < 0) {
        return outcome.error == 0 ? std::nullopt : std::optional(errorFor(outcome.error));
    }
    if (outcome.error != 0) {
        qCInfo(lcShelves).noquote()
            << "Could not move" << outcome.from << "to" << outcome.destination << "-"
            << systemErrorDescription(outcome.error);
        startWatching(shelves_.at(index));
        return errorFor(outcome.error);
    }
    shelves_[index].folderPath = outcome.newFolder;
    settings_.setLastShelfLocation(outcome.destination);
    save();
    startWatching(shelves_.at(index));
    Q_EMIT shelvesChanged();
    return std::nullopt;
}

void ShelfStore::deleteShelf(const QUuid& id) {
    const qsizetype index = indexOf(id);
    if (index < 0) {
        return;
    }
    stopWatching(id);
    if (moving_.contains(id)) {
        deletedWhileMoving_.insert(id);
    } else {
        trashInBackground(shelves_.at(index).folderPath);
    }
    shelves_.removeAt(index);
    save();
    Q_EMIT shelvesChanged();
}

void ShelfStore::trashInBackground(const QString& folder) {
    pool_.start([folder] {
        if (anythingAt(folder) && !QFile::moveToTrash(folder)) {
            qCWarning(lcShelves).noquote() << "Could not move" << folder << "to the trash";
        }
    });
}

QStringList ShelfStore::files(const ShelfItem& shelf) {
    QStringList media;
    // Without QDir::Hidden, dot files are left out; QDir::Files skips folders.
    const QFileInfoList entries = QDir(shelf.folderPath).entryInfoList(QDir::Files, QDir::Unsorted);
    for (const QFileInfo& entry : entries) {
        if (isMediaFile(entry)) {
            media.append(entry.absoluteFilePath());
        }
    }
    return media;
}

// Entries that do not decode are left out one by one; the file is then kept
// aside before the next save. Folders are not checked here: a shelf whose
// folder is missing stays listed.
void ShelfStore::load() {
    file_.readEntries(EnvelopeFile::EntryList::array,
                      [this](const std::string& /*index*/, const nlohmann::ordered_json& entry) {
                          std::optional<ShelfItem> shelf = decodeShelfItem(entry);
                          if (!shelf || indexOf(shelf->id) >= 0) {
                              return false;
                          }
                          shelves_.append(*shelf);
                          return true;
                      });
    for (const ShelfItem& shelf : std::as_const(shelves_)) {
        startWatching(shelf);
    }
}

void ShelfStore::save() {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const ShelfItem& shelf : std::as_const(shelves_)) {
        json.push_back(encodeShelfItem(shelf));
    }
    file_.write(encodeJson(json));
}

qsizetype ShelfStore::indexOf(const QUuid& id) const {
    for (qsizetype index = 0; index < shelves_.size(); ++index) {
        if (shelves_.at(index).id == id) {
            return index;
        }
    }
    return -1;
}

// A folder missing now is not watched, and its shelf is not removed later.
void ShelfStore::startWatching(const ShelfItem& shelf) {
    if (watched_.contains(shelf.id) || !QFileInfo(shelf.folderPath).isDir()) {
        return;
    }
    watched_.insert(shelf.id, QDir::cleanPath(shelf.folderPath));
    updateWatchedPaths();
}

void ShelfStore::stopWatching(const QUuid& id) {
    if (watched_.remove(id)) {
        updateWatchedPaths();
    }
}

// The watcher follows the watched shelves: their folders and the folders
// they lie in. A folder deleted and made again needs a new watch as well.
void ShelfStore::updateWatchedPaths() {
    QSet<QString> wanted;
    for (const QString& folder : std::as_const(watched_)) {
        wanted.insert(folder);
        wanted.insert(QFileInfo(folder).absolutePath());
    }
    const QStringList current = watcher_.directories();
    QStringList stale;
    for (const QString& path : current) {
        if (!wanted.contains(path)) {
            stale.append(path);
        }
    }
    QStringList missing;
    for (const QString& path : std::as_const(wanted)) {
        if (!current.contains(path) && QFileInfo(path).isDir()) {
            missing.append(path);
        }
    }
    if (!stale.isEmpty()) {
        watcher_.removePaths(stale);
    }
    if (!missing.isEmpty()) {
        watcher_.addPaths(missing);
    }
}

// A folder still there (a rename undone, a file added) changes nothing.
void ShelfStore::checkWatchedFolders() {
    QList<QUuid> vanished;
    for (auto watched = watched_.cbegin(); watched != watched_.cend(); ++watched) {
        if (!anythingAt(watched.value())) {
            vanished.append(watched.key());
        }
    }
    if (!vanished.isEmpty()) {
        removeVanished(vanished);
    }
    updateWatchedPaths();
}

// The folder is not searched for: a shelf folder renamed or moved by someone
// else loses its shelf.
void ShelfStore::removeVanished(const QList<QUuid>& ids) {
    for (const QUuid& id : ids) {
        qCInfo(lcShelves).noquote()
            << "Shelf folder" << watched_.value(id) << "is gone; its shelf is removed";
        watched_.remove(id);
    }
    shelves_.removeIf([&ids](const ShelfItem& shelf) { return ids.contains(shelf.id); });
    save();
    Q_EMIT shelvesChanged();
}
