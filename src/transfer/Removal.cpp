#include "transfer/Removal.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

void logNotRemoved(Desktop &desktop, const QString &path, const Failure &failure) {
  desktop.log(u"%1 could not be removed: %2"_s.arg(path, failure.reason()));
}

void removeOrLog(FileSystem &files, Desktop &desktop, const QString &path) {
  try {
    files.removeFile(path);
  } catch (const Failure &failure) {
    logNotRemoved(desktop, path, failure);
  }
}

void removeTemporaryDragFile(FileSystem &files, Desktop &desktop, const QString &homePath, const QString &fileName) {
  for (const QString &folder : {u"/private/tmp/"_s, homePath + u"/Library/Caches/TemporaryItems/"_s}) {
    const QString path = folder + fileName;
    if (files.presence(path) == Presence::Present) {
      removeOrLog(files, desktop, path);
      return;
    }
  }
}

} // namespace sonorel
