#include "platform/linux/QtIdentifiers.h"

#include <QUuid>

namespace sonorel {

QString QtIdentifiers::generateUUID() {
  return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

QByteArray QtIdentifiers::generateUUIDBytes() {
  return QUuid::createUuid().toRfc4122();
}

} // namespace sonorel
