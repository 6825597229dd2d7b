// Replaces a favourites file on the share so that at every instant the complete old or the complete new file exists
// under a known name, whatever dies: client copy, new and old bytes in the backup folder, a marker, then delete,
// write and read back. While one client looks and writes, ".sonorel-lock" keeps the others out.
// One turn at a time: a second thread waits for the first. Blocks; read docs/formats/favourites.md for the names.
#pragma once

#include "core/state/Session.h"
#include "core/state/ShareLayout.h"
#include "favourites/FavouritesBackup.h"
#include "favourites/FavouritesFormat.h"
#include "favourites/ShareLock.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Identifiers.h"

#include <mutex>
#include <optional>
#include <stop_token>

namespace sonorel {

// The server's file at the last look. Bytes are empty when it was certainly absent.
struct SeenFile {
  QByteArray bytes;
  std::optional<FileAttributes> attributes; // none: absent
};

// Tells the connected product from others in names of folders: by the hardware address read from its share, else by
// the address connected to.
[[nodiscard]] QString productKey(const Session &session);

struct RewriteTools {
  FileSystem &files;
  Clock &clock;
  Identifiers &identifiers;
  Desktop &desktop;
  const Session &session;
};

class FavouritesRewrite {
public:
  // What the tools refer to must outlive the object. tempFileLocation ends in "/"; backupFolder does not.
  FavouritesRewrite(RewriteTools tools, ShareFolders folders, QString tempFileLocation, QString backupFolder);

  // The lock file stands on the share as long as the turn lives.
  class Turn {
  public:
    Turn(FavouritesRewrite &owner, FavouritesKind kind, std::stop_token stop);

    // Finishes an interrupted rewrite of this product first. Throws Failure: Unknown when it cannot be told whether
    // the file is there; then nothing may be deleted or written.
    [[nodiscard]] SeenFile look();
    // False, and nothing was changed, when the server's file is no longer the one that was seen: look again.
    // Throws Failure when the new bytes do not stand on the share; the old ones were put back as far as possible.
    [[nodiscard]] bool replace(const SeenFile &seen, const QByteArray &newBytes);

  private:
    [[nodiscard]] std::optional<FileAttributes> current();
    [[nodiscard]] bool unchanged(const SeenFile &seen);
    void recover();
    void deleteOld();
    [[nodiscard]] bool surelyStands();
    void write(const QByteArray &bytes);
    [[nodiscard]] bool putBack(const SeenFile &seen);
    void finishBackup();

    FavouritesRewrite &m_owner;
    std::lock_guard<std::mutex> m_turn;
    QString m_name;
    QString m_path;
    FavouritesBackup m_backup;
    ShareLock m_lock;
  };

  FavouritesRewrite(const FavouritesRewrite &) = delete;
  FavouritesRewrite &operator=(const FavouritesRewrite &) = delete;

  // Waits for other clients. Throws Failure (Stopped, Unknown).
  [[nodiscard]] Turn begin(FavouritesKind kind, std::stop_token stop = {});
  // At connect, before validation: finishes what was interrupted on this product. Never throws; failures are logged.
  void recoverAtConnect(std::stop_token stop = {});

  // The product's own folder in the backup.
  [[nodiscard]] QString backupFolderOfProduct() const;

private:
  [[nodiscard]] FavouritesBackup backup(FavouritesKind kind) const;
  // Tells this client's locks from those of others, for as long as its data folder lives.
  [[nodiscard]] QByteArray ownMark();
  void requireShare();

  RewriteTools m_tools;
  ShareFolders m_folders;
  QString m_tempFileLocation;
  QString m_backupFolder;
  std::mutex m_turnMutex; // one turn at a time; guards nothing else
};

} // namespace sonorel
