#include "transfer/BookmarkTransfer.h"

#include "core/state/FileTypes.h"
#include "core/state/PathNames.h"
#include "core/state/ShareLayout.h"
#include "platform/Failure.h"
#include "transfer/BookmarkNames.h"
#include "transfer/Removal.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

BookmarkTransfer::BookmarkTransfer(const TransferTools &tools, ServerFiles &server, QString folder)
    : m_tools(tools), m_server(server), m_folder(std::move(folder)),
      m_processBookmark(tools.files, tools.scripts, tools.desktop) {}

bool BookmarkTransfer::transferBookmark(const QString &path) {
  bool placed = false;
  try {
    placed = convertAndPlace(path);
  } catch (const Failure &) {
    removeDragFile(path);
    throw;
  }
  removeDragFile(path);
  return placed;
}

void BookmarkTransfer::removeDragFile(const QString &path) {
  removeTemporaryDragFile(m_tools.files, m_tools.desktop, m_tools.homePath, lastPathComponent(path));
}

bool BookmarkTransfer::convertAndPlace(const QString &path) {
  const bool isUrlFile = checkFileType(pathExtension(path), u"url");
  const QString name = isUrlFile ? lastPathComponent(path) : withExtension(nameWithoutExtension(path), u"url"_s);
  const QString file = m_folder + cleanedName(name);
  if (m_server.exists(file)) {
    return false;
  }
  const auto local = isUrlFile ? std::optional(path) : m_processBookmark.processBookmark(path, m_server.stop());
  const bool placed = local && place(*local, file);
  if (local && (placed || !isUrlFile)) {
    removeOrLog(m_tools.files, m_tools.desktop, *local);
  }
  m_processBookmark.clear();
  return placed;
}

// In one step: what stands there counts as the bookmark from then on.
bool BookmarkTransfer::place(const QString &local, const QString &file) {
  try {
    m_server.createTree(m_folder, kDefaultFolderMode);
    m_tools.files.writeAtomically(file, m_tools.files.read(local, kLargestBookmark));
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"The bookmark %1 could not be copied: %2"_s.arg(local, failure.reason()));
    return false;
  }
  m_server.removeCompanion(file);
  return true;
}

bool BookmarkTransfer::writeBookmark(const QString &fileName, const QString &text) {
  const QString file = kBookmarkFolderLiteral.toString() + fileName;
  bool isNew = false;
  try {
    m_server.createTree(kBookmarkFolderLiteral.toString(), kFolderMode);
    isNew = !m_server.exists(file);
    m_tools.files.write(file, text.toUtf8());
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"The bookmark %1 could not be written: %2"_s.arg(file, failure.reason()));
    if (isNew) {
      m_server.removeRemains(file);
    }
    return false;
  }
  return true;
}

} // namespace sonorel
