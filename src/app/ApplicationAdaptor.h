// org.freedesktop.Application at the door: re-open, opened files and the actions of the dock menu. Main thread.
#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace sonorel {

class Door;

class ApplicationAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
  explicit ApplicationAdaptor(Door &door);

public Q_SLOTS:
  void Activate(const QVariantMap &platformData, const QDBusMessage &message);
  void Open(const QStringList &uris, const QVariantMap &platformData, const QDBusMessage &message);
  void ActivateAction(const QString &name, const QVariantList &parameter, const QVariantMap &platformData,
                      const QDBusMessage &message);

private:
  Door &m_door;
};

} // namespace sonorel
