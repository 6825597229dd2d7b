#include "app/ApplicationAdaptor.h"

#include "app/Door.h"
#include "app/DoorErrors.h"

#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ApplicationAdaptor::ApplicationAdaptor(Door &door) : QDBusAbstractAdaptor(&door), m_door(door) {}

void ApplicationAdaptor::Activate(const QVariantMap & /*platformData*/) {
  m_door.actions().reopen();
}

void ApplicationAdaptor::Open(const QStringList &uris, const QVariantMap & /*platformData*/,
                              const QDBusMessage &message) {
  QStringList paths;
  for (const QString &uri : uris) {
    const QUrl url(uri);
    if (url.isLocalFile()) {
      paths.append(url.toLocalFile());
    }
  }
  if (paths.isEmpty()) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"there is no \"file:\" URI among them"_s);
    return;
  }
  m_door.actions().openFiles(paths);
}

void ApplicationAdaptor::ActivateAction(const QString &name, const QVariantList & /*parameter*/,
                                        const QVariantMap & /*platformData*/, const QDBusMessage &message) {
  const ClientActions &actions = m_door.actions();
  const UserInterfaceState &state = m_door.state();
  if (name == u"cancel") {
    actions.cancel();
  } else if (name == u"quit") {
    actions.quit();
  } else if (name == u"help") {
    actions.help();
  } else if (name == u"products") {
    actions.products();
  } else if (name == u"preferences") {
    actions.preferences();
  } else if (name != u"connect" && name != u"disconnect") {
    refuse(m_door.bus(), message, DoorError::Invalid, u"there is no action \"%1\""_s.replace(u"%1"_s, name));
  } else if (state.busy) {
    refuse(m_door.bus(), message, DoorError::Busy, u"the client is connecting"_s);
  } else if (name == u"disconnect") {
    actions.disconnect();
  } else if (state.transferring) {
    refuse(m_door.bus(), message, DoorError::Busy, u"a transfer is running"_s);
  } else {
    actions.connect();
  }
}

} // namespace sonorel
