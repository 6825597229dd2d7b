#include "trackchute/Poster.h"

#include "platform/Failure.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariantMap>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

constexpr auto kClientService = "com.orv.Sonorel";
constexpr auto kClientPath = "/com/orv/Sonorel";
constexpr auto kClientInterface = "com.orv.Sonorel.Client";
constexpr qsizetype kLargestNotification = 32 * 1024 * 1024;
constexpr int kAnswerTimeout = 30000; // milliseconds; the door answers at once, a busy machine may not

QDBusMessage property(const QString &name) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(QString::fromLatin1(kClientService), QString::fromLatin1(kClientPath),
                                     u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
  call << QString::fromLatin1(kClientInterface) << name;
  return QDBusConnection::sessionBus().call(call, QDBus::Block, kAnswerTimeout);
}

} // namespace

Poster::Poster() {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    throw Failure(u"there is no session bus; start the programs below dbus-run-session"_s);
  }
  if (!bus.interface()->isServiceRegistered(QString::fromLatin1(kClientService))) {
    throw Failure(u"no Sonorel client is running"_s);
  }
}

QString Poster::deviceName() const {
  const QDBusMessage reply = property(u"DeviceName"_s);
  if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
    return {};
  }
  return reply.arguments().constFirst().value<QDBusVariant>().variant().toString();
}

void Poster::postDrag(const QString &object, const QStringList &draggedFiles) {
  qsizetype bytes = object.size();
  for (const QString &path : draggedFiles) {
    bytes += path.toUtf8().size() + 8; // the length, the ending NUL and the padding
  }
  if (bytes > kLargestNotification) {
    throw Failure(u"this is more than one drop can hold; drop it in smaller portions"_s);
  }
  QDBusMessage drag =
      QDBusMessage::createSignal(u"/com/orv/TrackChute"_s, u"com.orv.TrackChute"_s, u"TrackChute_DragRecieved"_s);
  drag << object << QVariantMap{{u"draggedFiles"_s, draggedFiles}};
  if (!QDBusConnection::sessionBus().send(drag)) {
    throw Failure(u"the session bus did not take the drop"_s);
  }
  // A message on the same connection is answered only after the drop has been delivered.
  const QDBusMessage reply = property(u"Pending"_s);
  if (reply.type() != QDBusMessage::ReplyMessage) {
    throw Failure(u"the Sonorel client does not answer: "_s + reply.errorMessage());
  }
}

} // namespace sonorel::trackchute
