#include "app/ApplicationAdaptor.h"

#include "app/Door.h"
#include "app/DoorErrors.h"

#include <QUrl>

#include <algorithm>
#include <iterator>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ApplicationAdaptor::ApplicationAdaptor(Door &door) : QDBusAbstractAdaptor(&door), m_door(door) {}

void ApplicationAdaptor::Activate(const QVariantMap & /*platformData*/, const QDBusMessage &message) {
  if (!m_door.refuses(message, Needs::NotQuitting)) {
    m_door.actions().reopen();
  }
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
  } else if (!m_door.refuses(message, Needs::NotQuitting)) {
    m_door.actions().openFiles(paths);
  }
}

void ApplicationAdaptor::ActivateAction(const QString &name, const QVariantList & /*parameter*/,
                                        const QVariantMap & /*platformData*/, const QDBusMessage &message) {
  struct Action {
    QStringView name;
    Needs needs;
    const std::function<void()> &operation;
  };
  const ClientActions &actions = m_door.actions();
  const Action all[] = {
      {u"cancel", Needs::Nothing, actions.cancel},
      {u"quit", Needs::Nothing, actions.quit},
      {u"help", Needs::NotQuitting, actions.help},
      {u"products", Needs::NotQuitting, actions.products},
      {u"preferences", Needs::NotQuitting, actions.preferences},
      {u"disconnect", Needs::NotConnecting, actions.disconnect},
      {u"connect", Needs::NotTransferring, actions.connect},
  };
  const auto *const found =
      std::find_if(std::begin(all), std::end(all), [&name](const Action &action) { return action.name == name; });
  if (found == std::end(all)) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"there is no action \"%1\""_s.replace(u"%1"_s, name));
  } else if (!m_door.refuses(message, found->needs)) {
    found->operation();
  }
}

} // namespace sonorel
