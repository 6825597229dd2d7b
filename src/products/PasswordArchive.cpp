#include "products/PasswordArchive.h"

namespace sonorel {

QByteArray encrypt(PropertyLists &lists, const QString &password) {
  return lists.archive(password);
}

QString decrypt(PropertyLists &lists, const QVariant &stored) {
  if (stored.typeId() == QMetaType::QString) {
    return stored.toString();
  }
  if (stored.typeId() != QMetaType::QByteArray) {
    return {};
  }
  return lists.unarchive(stored.toByteArray()).value_or(QString());
}

} // namespace sonorel
