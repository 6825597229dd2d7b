#include "core/ShareCleanup.h"

#include "platform/Failure.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ShareCleanup::ShareCleanup(FileSystem &files, Clock &clock, Desktop &desktop, ShareFolders folders, QString mark)
    : m_files(files), m_clock(clock), m_desktop(desktop), m_folders(std::move(folders)), m_mark(std::move(mark)) {}

void ShareCleanup::run() {
  m_serverNow.reset();
  clean(m_folders.system());
  if (isFolder(m_files, m_folders.bookmarks())) {
    clean(m_folders.bookmarks());
  }
}

void ShareCleanup::clean(const QString &folder) {
  try {
    for (const QString &name : m_files.list(folder)) {
      if (const QString path = folder + name; isLeftOver(name, path)) {
        m_files.removeFile(path);
      }
    }
  } catch (const std::exception &e) {
    m_desktop.log(u"temporary files on the share are left: "_s + reasonOf(e));
  }
}

bool ShareCleanup::isLeftOver(const QString &name, const QString &path) {
  if (!name.startsWith(kTemporaryPrefix) || name == kShareLockName) {
    return false;
  }
  const auto attributes = m_files.attributes(path, Links::NoFollow);
  if (!attributes || attributes->kind != FileKind::File) {
    return false;
  }
  if (!m_mark.isEmpty() && name.startsWith(kTemporaryPrefix.toString() + m_mark + u'-')) {
    return true;
  }
  return serverNow() - attributes->modifiedSeconds > kForeignTemporaryAge;
}

qint64 ShareCleanup::serverNow() {
  if (!m_serverNow) {
    qint64 newest = 0;
    for (const QString &name : m_files.list(m_folders.system())) {
      if (const auto attributes = m_files.attributes(m_folders.system() + name, Links::NoFollow)) {
        newest = std::max(newest, attributes->modifiedSeconds);
      }
    }
    m_serverNow = std::min(newest, m_clock.nowSeconds());
  }
  return *m_serverNow;
}

} // namespace sonorel
