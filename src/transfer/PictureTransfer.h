// Puts pictures and films onto the share and marks their records. Both go into the folder of their album: no
// extension stands for a film of its own, and transferVideoFile, with its one folder for all, is for a type flag that
// no extension sets. A name that stands there with another content is replaced. Worker thread; blocks on the share.
// Failures are thrown to the driver. Read next: ServerFiles.h.
#pragma once

#include "core/state/ShareLayout.h"
#include "transfer/ServerFiles.h"
#include "transfer/TransferTools.h"

#include <QString>

namespace sonorel {

class PictureTransfer {
public:
  // All references must outlive the object.
  PictureTransfer(const TransferTools &tools, ServerFiles &server, ShareFolders folders);

  // Both: true only when a copy was made now; false when an identical one was there or the copy failed.
  [[nodiscard]] bool transferVideoFile(const QString &path);
  [[nodiscard]] bool transferPhotoOrVideoFile(const QString &path);
  // The last file was found on the share, identical.
  [[nodiscard]] bool settledOnIdenticalFile() const { return m_settledOnIdenticalFile; }
  // The two places where a picture may stand, the one that is its own first.
  [[nodiscard]] QStringList serverCandidates(const QString &path) const;
  // Marks the records of the source as transferred. They keep their local path, its last element cleaned; a picture
  // that stands in the photo folder itself is recorded by its name alone.
  void playlistInfoUpdate(const QString &path);

private:
  [[nodiscard]] bool settleOrCopy(const QString &source, const QString &file, bool isThere);
  [[nodiscard]] bool isSettledOn(const QString &source, const QString &file);
  [[nodiscard]] bool replace(const QString &source, const QString &file);
  [[nodiscard]] bool copyOver(const QString &source, const QString &file);
  [[nodiscard]] bool copyNew(const QString &source, const QString &file);
  void record(const QString &source);

  TransferTools m_tools;
  ServerFiles &m_server;
  const ShareFolders m_folders;
  bool m_settledOnIdenticalFile = false;
  bool m_isOlderFilePresentInMacFolder = false;
};

} // namespace sonorel
