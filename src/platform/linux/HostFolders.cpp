#include "platform/linux/HostFolders.h"

#include "platform/linux/SystemError.h"

#include <sys/stat.h>

#include <cerrno>

namespace sonorel {

void makeHostFolders(const QString &path, mode_t mode) {
  for (qsizetype end = path.indexOf(u'/', 1);; end = path.indexOf(u'/', end + 1)) {
    const QString folder = end < 0 ? path : path.left(end);
    const QByteArray host = folder.toUtf8();
    if (::mkdir(host.constData(), mode) == 0) {
      ::chmod(host.constData(), mode);
    } else if (errno != EEXIST) {
      throw systemFailure(errno, folder);
    }
    if (end < 0) {
      return;
    }
  }
}

} // namespace sonorel
