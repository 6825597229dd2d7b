// Puts bookmarks into the bookmark folder of the share: bookmark files, which become ".url" files on the way, and
// bookmarks that a drag has brought as a name and a text. Worker thread; blocks on the share. Read next:
// ProcessBookmark.h.
#pragma once

#include "transfer/ProcessBookmark.h"
#include "transfer/ServerFiles.h"
#include "transfer/TransferTools.h"

#include <QString>

namespace sonorel {

class BookmarkTransfer {
public:
  // All references must outlive the object. folder: the bookmark folder, ending in "/".
  BookmarkTransfer(const TransferTools &tools, ServerFiles &server, QString folder);

  // True when a copy was made now; false when one of that name was there, or nothing could be copied (logged). The
  // local ".url" file is gone after the copy, also when it was the dropped file itself.
  [[nodiscard]] bool transferBookmark(const QString &path);
  // Into the folder that browsers' drags always use. False, and logged, when it could not be written.
  [[nodiscard]] bool writeBookmark(const QString &fileName, const QString &text);

private:
  [[nodiscard]] bool convertAndPlace(const QString &path);
  void removeDragFile(const QString &path);
  [[nodiscard]] bool place(const QString &local, const QString &file);

  TransferTools m_tools;
  ServerFiles &m_server;
  const QString m_folder;
  ProcessBookmark m_processBookmark;
};

} // namespace sonorel
