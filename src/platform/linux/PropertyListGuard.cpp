// What the guards of both forms share.
#include "platform/linux/PropertyListGuard.h"

#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

bool isBinaryPropertyList(QByteArrayView bytes) {
  return bytes.startsWith("bplist");
}

void checkPropertyListSize(QByteArrayView bytes) {
  if (bytes.size() > PropertyLists::kSizeLimit) {
    refusePropertyList(u"the list is larger than %1 bytes"_s.arg(PropertyLists::kSizeLimit));
  }
}

void refusePropertyList(const QString &reason) {
  throw Failure(u"damaged property list: "_s + reason, FailureKind::Damaged);
}

void refusePropertyList(const QString &reason, qsizetype position) {
  throw Failure(u"damaged property list: %1 (byte %2)"_s.arg(reason, QString::number(position)),
                FailureKind::Damaged);
}

} // namespace sonorel
