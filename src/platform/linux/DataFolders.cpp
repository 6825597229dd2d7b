#include "platform/linux/DataFolders.h"

#include "platform/linux/HostFolders.h"
#include "platform/linux/SystemError.h"

#include <sys/stat.h>

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr mode_t kPrivate = 0700;

} // namespace

void prepareDataFolders(const Roots &roots) {
  for (const QString &folder :
       {roots.data + u"/Library"_s, roots.data + u"/Home/Library"_s, roots.data + u"/App Data"_s,
        roots.data + u"/Temporary"_s, roots.runtime + u"/Volumes"_s}) {
    makeHostFolders(folder, kPrivate);
  }
  for (const QString &folder : {roots.data, roots.runtime}) {
    if (::chmod(folder.toUtf8().constData(), kPrivate) != 0) {
      throw systemFailure(errno, folder);
    }
  }
}

} // namespace sonorel
