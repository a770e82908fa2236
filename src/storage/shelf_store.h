// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>
#include <QUuid>
#include <functional>
#include <optional>

#include "storage/envelope_file.h"
#include "storage/shelf_item.h"
#include "storage/user_settings.h"

// Why a shelf could not be created, renamed or moved. Its description is
// what the user is shown.
class ShelfError {
public:
    enum class Code {
        // Something already has the shelf folder's name.
        folderExists,
        // The file system refused; the description is the system's own.
        unknown,
    };

    static ShelfError folderExists() { return ShelfError(Code::folderExists, {}); }
    static ShelfError unknown(const QString& systemDescription) {
        return ShelfError(Code::unknown, systemDescription);
    }

    Code code() const { return code_; }
    QString description() const;

private:
    ShelfError(Code code, const QString& systemDescription)
        : code_(code), systemDescription_(systemDescription) {}

    Code code_;
    QString systemDescription_;
};

// The shelves, named collections of captures each kept in a folder called
// "NAME:shelf", listed in the sealed shelves.bin in the order shown (new
// shelves last). The store makes, renames, moves and trashes the folders,
// and watches them: a shelf whose folder is deleted or renamed by anyone
// else leaves the list. A shelf whose folder is already missing when the
// list loads stays listed, unwatched, until the user deletes it. One shared
// instance, confined to the GUI thread; the whole file is rewritten after
// every change.
class ShelfStore : public QObject {
    Q_OBJECT

public:
    // Runs on the GUI thread when a move has ended; nothing means it worked.
    using MoveFinished = std::function<void(const std::optional<ShelfError>& error)>;

    // The store of the user's data folder; new shelves go to the Desktop
    // unless the settings remember another parent.
    static ShelfStore& shared();

    // Loads `directory`/shelves.bin (moving it in from `legacyDirectory`
    // first when only an old copy is there) and starts watching the folders.
    // `settings` keeps the last parent folder chosen; `fallbackParent` is the
    // parent of new shelves while it has none.
    ShelfStore(const QString& directory, const QString& legacyDirectory, UserSettings& settings,
               const QString& fallbackParent, QObject* parent = nullptr);
    ~ShelfStore() override;

    ShelfStore(const ShelfStore&) = delete;
    ShelfStore& operator=(const ShelfStore&) = delete;

    const QList<ShelfItem>& shelves() const { return shelves_; }
    std::optional<ShelfItem> shelf(const QUuid& id) const;

    // Where the next shelf is created: the last parent chosen, else the
    // fallback parent.
    QString defaultParentFolder() const;
    // "NAME:shelf": the name as given, colons and all.
    static QString folderName(const QString& shelfName);

    // Creates `name`:shelf (and missing parents) in the default parent folder
    // and appends the shelf. The name is taken as it is: trimming is the
    // caller's.
    std::optional<ShelfError> createShelf(const QString& name);
    // Renames the shelf and its folder, which stays in the same parent. An
    // unknown id changes nothing and is no error; the shelf's own current
    // name is taken (folderExists).
    std::optional<ShelfError> renameShelf(const QUuid& id, const QString& newName);
    // Moves the shelf's folder into `destination` on a worker thread (across
    // file systems it is copied, which may take long) and, once it is there,
    // remembers `destination` as the parent of the next new shelf. The list
    // changes when the move has succeeded; `finished` then runs on the GUI
    // thread unless `context` is gone by then. While a shelf moves, renaming
    // or moving it again fails with the system's "busy" description. An
    // unknown id finishes without an error and without changes.
    void moveShelf(const QUuid& id, const QString& destination, QObject* context,
                   const MoveFinished& finished);
    bool isMoving(const QUuid& id) const { return moving_.contains(id); }
    // Drops the shelf at once and moves its folder to the trash in the
    // background; a folder that cannot be trashed stays where it is. Until
    // that move ends (a rename, in practice at once) the folder's name is
    // still taken. A shelf deleted while it moves is trashed where the move
    // leaves it.
    void deleteShelf(const QUuid& id);

    // The shelf's media files (images and videos by extension, in any case),
    // in the order the file system lists them: no hidden files, nothing from
    // subfolders; empty when the folder cannot be read. Reads the disk: safe
    // on any thread, and meant for a worker for large folders.
    static QStringList files(const ShelfItem& shelf);

    QString filePath() const { return file_.path(); }

Q_SIGNALS:
    // The list changed: a shelf was added, renamed, moved or removed.
    void shelvesChanged();

private:
    struct MoveOutcome {
        QUuid id;
        QString from;
        QString destination;
        QString newFolder;
        int error = 0;
    };

    void load();
    void save();
    qsizetype indexOf(const QUuid& id) const;
    std::optional<ShelfError> renameFolder(const QString& from, const QString& to);
    std::optional<ShelfError> finishMove(const MoveOutcome& outcome);
    void trashInBackground(const QString& folder);

    void startWatching(const ShelfItem& shelf);
    void stopWatching(const QUuid& id);
    void updateWatchedPaths();
    void checkWatchedFolders();
    void removeVanished(const QList<QUuid>& ids);

    EnvelopeFile file_;
    UserSettings& settings_;
    QString fallbackParent_;
    QList<ShelfItem> shelves_;
    // The watched shelves and their folders' paths. A shelf is missing here
    // while it moves, and when its folder was missing when watching began.
    QHash<QUuid, QString> watched_;
    QSet<QUuid> moving_;
    // Shelves deleted while their folder was moving.
    QSet<QUuid> deletedWhileMoving_;
    // Watches every watched shelf's folder and its parent: a folder
    // removed or renamed shows in either; events are gathered for a moment
    // before the folders are checked.
    QFileSystemWatcher watcher_;
    QTimer settleTimer_;
    // Destroyed first: its destructor waits for the moves and trash moves.
    QThreadPool pool_;
};
