#include "app/DoorErrors.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

QString nameOf(DoorError error) {
  switch (error) {
  case DoorError::Busy:
    return u"com.orv.Sonorel.Error.Busy"_s;
  case DoorError::Changed:
    return u"com.orv.Sonorel.Error.Changed"_s;
  case DoorError::Invalid:
    break;
  }
  return u"com.orv.Sonorel.Error.Invalid"_s;
}

void refuse(QDBusConnection bus, const QDBusMessage &call, DoorError error, const QString &reason) {
  call.setDelayedReply(true); // this is the only reply
  bus.send(call.createErrorReply(nameOf(error), reason));
}

} // namespace sonorel
