#include "platform/linux/DataFolders.h"

#include "platform/linux/SystemError.h"

#include <sys/stat.h>

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr mode_t kPrivate = 0700;

void makeFolders(const QString &path) {
  for (qsizetype end = path.indexOf(u'/', 1);; end = path.indexOf(u'/', end + 1)) {
    const QString folder = end < 0 ? path : path.left(end);
    if (::mkdir(folder.toUtf8().constData(), kPrivate) != 0 && errno != EEXIST) {
      throw systemFailure(errno, folder);
    }
    if (end < 0) {
      return;
    }
  }
}

} // namespace

void prepareDataFolders(const Roots &roots) {
  for (const QString &folder :
       {roots.data + u"/Library"_s, roots.data + u"/Home/Library"_s, roots.data + u"/App Data"_s,
        roots.data + u"/Temporary"_s, roots.runtime + u"/Volumes"_s}) {
    makeFolders(folder);
  }
  for (const QString &folder : {roots.data, roots.runtime}) {
    if (::chmod(folder.toUtf8().constData(), kPrivate) != 0) {
      throw systemFailure(errno, folder);
    }
  }
}

} // namespace sonorel
