// Temporary files in the share's system and bookmark folders that nobody will finish: this client's own, which an
// earlier run left, and those of other clients when they are older than a day. Controller's thread, right after a
// connection; blocks on the share; never throws.
#pragma once

#include "core/state/ShareLayout.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"

#include <QString>

#include <optional>

namespace sonorel {

inline constexpr qint64 kForeignTemporaryAge = 24LL * 60 * 60; // seconds

class ShareCleanup {
public:
  // All references must outlive the object. mark stands in the names of this client's own files; empty: none is
  // known.
  ShareCleanup(FileSystem &files, Clock &clock, Desktop &desktop, ShareFolders folders, QString mark);

  void run();

private:
  void clean(const QString &folder);
  [[nodiscard]] bool isLeftOver(const QString &name, const QString &path);
  // Seconds. Ages are the server's: the newest file of the system folder, which this connection has just written,
  // tells its clock. Never later than the client's own: a file from the future makes nothing old.
  [[nodiscard]] qint64 serverNow();

  FileSystem &m_files;
  Clock &m_clock;
  Desktop &m_desktop;
  const ShareFolders m_folders;
  const QString m_mark;
  std::optional<qint64> m_serverNow; // asked for once in a run
};

} // namespace sonorel
