#include "trackchute/ConnectedProduct.h"

#include "platform/Failure.h"
#include "trackchute/PlaylistName.h"

#include <QVariantMap>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

QString fromFile(FileSystem &files, PropertyLists &lists, const QString &propertyFile) {
  try {
    return lists.decode(files.read(propertyFile)).toMap().value(u"DeviceConnected"_s).toString();
  } catch (const Failure &) {
    return {}; // missing or damaged: the door knows as well
  }
}

} // namespace

QString connectedProduct(FileSystem &files, PropertyLists &lists, const QString &propertyFile,
                         const std::function<QString()> &askDoor) {
  const QString stored = fromFile(files, lists, propertyFile);
  if (isKnownProduct(stored)) {
    return stored;
  }
  const QString told = askDoor();
  return isKnownProduct(told) ? told : QString();
}

} // namespace sonorel::trackchute
