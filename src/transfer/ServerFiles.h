// What every kind of item needs on the share: to look, to make folders, to tell an identical copy, to copy and to
// clear away. Worker thread; blocks on the share. A share that does not answer is a Failure of kind Unknown.
#pragma once

#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Processes.h"

#include <QString>

#include <chrono>
#include <stop_token>

namespace sonorel {

class ServerFiles {
public:
  // All references must outlive the object. share: the mounted folder, no "/" at its end.
  ServerFiles(FileSystem &files, Processes &processes, Desktop &desktop, QString share);

  // The token that ends copies of the running transfer.
  void setStopToken(std::stop_token stop) { m_stop = std::move(stop); }
  [[nodiscard]] const std::stop_token &stop() const { return m_stop; }

  [[nodiscard]] bool exists(const QString &path);
  // Same size, and the source 0 or 1 second newer than the copy; also when both are one file.
  [[nodiscard]] bool isFileAlreadyExistsOnVaultbox1(const QString &sourcePath, const QString &serverPath);

  // A folder that cannot be made is logged, and the copy into it fails by itself.
  void createFolderIfMissing(const QString &path, quint32 mode);
  // With the folders above it, which a product that was never filled does not have. A "/" at the end is ignored.
  void createTree(const QString &folder, quint32 mode);
  // Every folder in front of the name, which is relative to base.
  void createFoldersOf(const QString &base, const QString &relativeName);

  // By the system's copy tool, attributes kept; its companion file goes. True when the copy stands; why not is
  // logged.
  [[nodiscard]] bool copy(const QString &source, const QString &file);
  // Asked before anything on the share goes for the source; false is logged.
  [[nodiscard]] bool canRead(const QString &source);
  // Where nothing stands any more because the old file was removed: half a copy goes, and when the program is about
  // to end most files are copied in the moment that is left.
  [[nodiscard]] bool copyInPlaceOfRemoved(const QString &source, const QString &file);
  // The attribute file that a copy leaves beside the file on some platforms.
  void removeCompanion(const QString &file);
  // Where nothing stood before a copy that failed: what it left is half an item, which players would show.
  void removeRemains(const QString &file);
  // Whether the other one was that file, which is gone now: on many shares large letters and small ones name the
  // same.
  [[nodiscard]] bool wentWith(const QString &gone, const QString &other);
  // False, and logged, when the old file stays.
  [[nodiscard]] bool removeOld(const QString &file);

private:
  [[nodiscard]] bool runCopy(const QString &source, const QString &file, const std::stop_token &stop,
                             std::chrono::milliseconds deadline);

  FileSystem &m_files;
  Processes &m_processes;
  Desktop &m_desktop;
  const QString m_share;
  std::stop_token m_stop;
};

} // namespace sonorel
