// What the system's tools do behind every Processes, as tests that run on the real one and on the fake. A test file
// registers them for its subject, as in FileSystemContract.h.
#pragma once

#include "platform/FileSystem.h"
#include "platform/Processes.h"

#include <functional>
#include <memory>

namespace sonorel::test {

// One fresh machine: tools and the files that they work on. The paths are the system's own. Nothing is mounted, and a
// mount of the URL kShareUrl on "/Volumes/VB-SHARE$" succeeds.
class ProcessesSubject {
public:
  virtual ~ProcessesSubject() = default;
  [[nodiscard]] virtual FileSystem &files() = 0;
  [[nodiscard]] virtual Processes &processes() = 0;
  // An empty folder on no volume, without a trailing "/".
  [[nodiscard]] virtual QString folder() = 0;
  virtual void setModified(const QString &path, qint64 seconds) = 0;
  // A file at a point that is not mounted, as a crashed client leaves it.
  virtual void putLeftover(const QString &path) = 0;
};

inline constexpr QStringView kShareUrl = u"//vbuser:p%40ss%3Bword@embedded/VB-SHARE$";

bool registerProcessesContract(const char *suite, std::function<std::unique_ptr<ProcessesSubject>()> make);

} // namespace sonorel::test
