#include "transfer/ServerFiles.h"

#include "core/state/PathNames.h"
#include "core/state/ShareLayout.h"
#include "platform/Failure.h"
#include "transfer/Removal.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kLastCopyDeadline{1500};

QString reasonOf(const ToolResult &result) {
  if (result.ending != ToolEnding::Exited) {
    return result.ending == ToolEnding::NotStarted ? u"the copy could not be started"_s : u"the copy was ended"_s;
  }
  const QString said = QString::fromUtf8(result.output).section(u'\n', 0, 0).trimmed();
  return said.isEmpty() ? u"status %1"_s.arg(result.status) : said;
}

} // namespace

ServerFiles::ServerFiles(FileSystem &files, Processes &processes, Desktop &desktop, QString share)
    : m_files(files), m_processes(processes), m_desktop(desktop), m_share(std::move(share)) {}

bool ServerFiles::exists(const QString &path) {
  const Presence presence = m_files.presence(path);
  if (presence == Presence::Unknown) {
    throw Failure(u"the share does not answer for "_s + path, FailureKind::Unknown);
  }
  return presence == Presence::Present;
}

bool ServerFiles::isFileAlreadyExistsOnVaultbox1(const QString &sourcePath, const QString &serverPath) {
  if (m_files.sameFile(sourcePath, serverPath)) {
    return true;
  }
  const auto source = m_files.attributes(sourcePath, Links::Follow);
  const auto server = m_files.attributes(serverPath, Links::Follow);
  if (!source || !server || source->size != server->size) {
    return false;
  }
  const qint64 newer = source->modifiedSeconds - server->modifiedSeconds;
  return newer == 0 || newer == 1;
}

void ServerFiles::createFolderIfMissing(const QString &path, quint32 mode) {
  if (isFolder(m_files, path)) {
    return;
  }
  try {
    m_files.createFolder(path, mode);
  } catch (const Failure &failure) {
    // The copy that follows fails by itself; a share that is gone must not be tried further.
    if (failure.kind() == FailureKind::Unknown) {
      throw;
    }
    m_desktop.log(u"The folder %1 could not be created: %2"_s.arg(path, failure.reason()));
  }
}

void ServerFiles::createTree(const QString &folder, quint32 mode) {
  const QString path = folder.chopped(folder.endsWith(u'/') ? 1 : 0);
  if (!isFolder(m_files, path)) {
    const QString below = m_share + u'/';
    createFoldersOf(below, path.mid(below.size()));
    createFolderIfMissing(path, mode);
  }
}

void ServerFiles::createFoldersOf(const QString &base, const QString &relativeName) {
  for (qsizetype slash = relativeName.indexOf(u'/'); slash >= 0; slash = relativeName.indexOf(u'/', slash + 1)) {
    createFolderIfMissing(base + relativeName.left(slash), kFolderMode);
  }
}

bool ServerFiles::canRead(const QString &source) {
  if (m_files.canRead(source)) {
    return true;
  }
  m_desktop.log(source + u" was not copied: it cannot be read"_s);
  return false;
}

bool ServerFiles::copy(const QString &source, const QString &file) {
  return runCopy(source, file, m_stop, {});
}

bool ServerFiles::copyInPlaceOfRemoved(const QString &source, const QString &file) {
  if (copy(source, file)) {
    return true;
  }
  removeRemains(file);
  if (!m_stop.stop_requested()) {
    return false;
  }
  if (runCopy(source, file, {}, kLastCopyDeadline)) {
    return true;
  }
  removeRemains(file);
  return false;
}

bool ServerFiles::runCopy(const QString &source, const QString &file, const std::stop_token &stop,
                          std::chrono::milliseconds deadline) {
  const ToolResult result = m_processes.run({u"/bin/cp"_s, {u"-p"_s, source, file}, std::nullopt, deadline}, stop);
  if (!succeeded(result)) {
    m_desktop.log(source + u" was not copied: "_s + reasonOf(result));
    return false;
  }
  removeCompanion(file);
  return true;
}

void ServerFiles::removeCompanion(const QString &file) {
  const QString companion = file.left(file.lastIndexOf(u'/') + 1) + u"._"_s + lastPathComponent(file);
  try {
    m_files.removeFile(companion);
  } catch (const Failure &) { // there is none on most platforms
    (void)companion;
  }
}

void ServerFiles::removeRemains(const QString &file) {
  if (m_files.presence(file) == Presence::Absent) {
    return; // a name that the share does not take leaves nothing
  }
  try {
    m_files.removeFile(file);
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      logNotRemoved(m_desktop, file, failure);
    }
  }
}

bool ServerFiles::wentWith(const QString &gone, const QString &other) {
  return other == gone ||
         (other.compare(gone, Qt::CaseInsensitive) == 0 && m_files.presence(other) != Presence::Present);
}

bool ServerFiles::removeOld(const QString &file) {
  try {
    m_files.removeFile(file);
  } catch (const Failure &failure) {
    if (failure.kind() == FailureKind::Unknown) {
      throw;
    }
    logNotRemoved(m_desktop, file, failure);
    return false;
  }
  return true;
}

} // namespace sonorel
