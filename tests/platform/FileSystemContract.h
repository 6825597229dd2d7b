// What every FileSystem does, as tests that run on the real one and on the fake. A test file registers them for its
// subject:
//   const bool kRegistered = registerFileSystemContract("FakeFileSystem", [] { return std::make_unique<...>(); });
#pragma once

#include "platform/FileSystem.h"

#include <functional>
#include <memory>

namespace sonorel::test {

// One fresh file system. The paths are the system's own.
class FileSystemSubject {
public:
  virtual ~FileSystemSubject() = default;
  [[nodiscard]] virtual FileSystem &files() = 0;
  // An empty folder on no volume, without a trailing "/".
  [[nodiscard]] virtual QString folder() = 0;
  // A share on "/Volumes/VB-SHARE$", whose folder is made when missing; it keeps its content while unmounted.
  virtual void mountShare() = 0;
  virtual void unmountShare() = 0;
  virtual void putLink(const QString &path, const QString &target) = 0;
  virtual void putFifo(const QString &path) = 0;
  virtual void setModified(const QString &path, qint64 seconds) = 0;
};

bool registerFileSystemContract(const char *suite, std::function<std::unique_ptr<FileSystemSubject>()> make);

} // namespace sonorel::test
