#include "trackchute/Poster.h"

#include "core/state/DockImages.h"
#include "platform/DropNotifications.h"
#include "platform/Failure.h"
#include "platform/linux/BusNames.h"
#include "platform/linux/NotificationMessage.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

constexpr int kAnswerTimeout = 30000; // milliseconds; the door answers at once, a busy machine may not

QVariant property(const QString &name) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(kClientService, kClientPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
  call << QString(kClientInterface) << name;
  const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, kAnswerTimeout);
  if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
    throw Failure(u"the Sonorel client does not answer: "_s + reply.errorMessage());
  }
  return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

} // namespace

Poster::Poster() {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    throw Failure(u"there is no session bus; start the programs below dbus-run-session"_s);
  }
  if (!bus.interface()->isServiceRegistered(kClientService)) {
    throw Failure(u"no Sonorel client is running"_s);
  }
}

QString Poster::deviceName() const {
  return property(u"DeviceName"_s).toString();
}

bool Poster::isBusy() const {
  return property(u"Busy"_s).toBool();
}

bool Poster::isConnected() const {
  return property(u"Connected"_s).toBool();
}

qsizetype Poster::selectedProducts() const {
  return property(u"SelectedProducts"_s).toStringList().size();
}

void Poster::postDrag(const QString &object, const QStringList &draggedFiles) {
  post(kMusicDrag.toString(), {object, {{kDraggedFilesKey.toString(), draggedFiles}}});
}

void Poster::postAlbums(const QVariantList &photoData) {
  post(kPhotoDrag.toString(), {{}, {{kPhotoDataKey.toString(), photoData}}});
}

void Poster::postBookmarks(const QStringList &titles, const QStringList &urls) {
  post(kBookmarkDrag.toString(), {{}, {{kTitlesKey.toString(), titles}, {kUrlsKey.toString(), urls}}});
}

void Poster::post(const QString &name, const Notification &notification) {
  const QDBusMessage drag = messageOfNotification(name, notification);
  if (!QDBusConnection::sessionBus().send(drag)) {
    throw Failure(u"the session bus did not take the drop"_s);
  }
  // A message on the same connection is answered only after the drop has been delivered.
  static_cast<void>(property(u"Pending"_s));
  // What waits behind a quit is carried by nobody: the client leaves its product and ends.
  if (property(u"DockImage"_s).toString() == kQuittingImage) {
    throw Failure(u"the Sonorel client is quitting, the drop was not taken; drop again when it runs"_s);
  }
}

} // namespace sonorel::trackchute
