#include "platform/linux/NotificationMessage.h"

#include "platform/DropNotifications.h"
#include "platform/Failure.h"
#include "platform/linux/BusNames.h"

#include <QDBusArgument>
#include <QDBusMetaType>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

[[noreturn]] void refuse(const QString &reason) {
  throw Failure(reason, FailureKind::Damaged);
}

// Const all the way: the reading overloads of QDBusArgument are the const ones.
QVariantMap mapOf(const QVariant &value, const QString &what) {
  if (value.typeId() == QMetaType::QVariantMap) {
    return value.toMap();
  }
  const QDBusArgument argument = value.value<QDBusArgument>();
  if (argument.currentSignature() != u"a{sv}") {
    refuse(what + u" is no dictionary"_s);
  }
  return qdbus_cast<QVariantMap>(argument);
}

QStringList textsOf(const QVariant &value, const QString &what) {
  if (value.typeId() != QMetaType::QStringList) {
    refuse(what + u" is no list of texts"_s);
  }
  return value.toStringList();
}

QVariantMap albumOf(const QVariantMap &given) {
  const QString nameKey = kAlbumNameKey.toString();
  const QVariant name = given.value(nameKey);
  if (name.typeId() != QMetaType::QString) {
    refuse(nameKey + u" is no text"_s);
  }
  const QString files = kDraggedFilesKey.toString();
  return {{nameKey, name}, {files, textsOf(given.value(files), files)}};
}

QVariantList albumsOf(const QVariant &value) {
  if (value.typeId() == QMetaType::QVariantList && value.toList().isEmpty()) {
    return {};
  }
  const QDBusArgument argument = value.value<QDBusArgument>();
  if (argument.currentSignature() != u"aa{sv}") {
    refuse(kPhotoDataKey.toString() + u" is no list of dictionaries"_s);
  }
  QVariantList albums;
  const auto given = qdbus_cast<QList<QVariantMap>>(argument);
  for (const QVariantMap &album : given) {
    albums.append(albumOf(album));
  }
  return albums;
}

// What a value takes in the message, never less.
qsizetype sizeOf(const QVariant &value) {
  qsizetype size = 32;
  switch (value.typeId()) {
  case QMetaType::QString:
    return size + value.toString().size() * 3;
  case QMetaType::QStringList: {
    const QStringList texts = value.toStringList();
    for (const QString &text : texts) {
      size += text.toUtf8().size() + 8;
    }
    return size;
  }
  case QMetaType::QVariantList: {
    const QVariantList values = value.toList();
    for (const QVariant &each : values) {
      size += sizeOf(each);
    }
    return size;
  }
  case QMetaType::QVariantMap: {
    const QVariantMap map = value.toMap();
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
      size += entry.key().size() * 3 + 16 + sizeOf(entry.value());
    }
    return size;
  }
  default:
    throw Failure(u"a notification holds texts, lists of texts and lists of dictionaries only"_s);
  }
}

QVariant sendable(const QVariant &value) {
  if (value.typeId() != QMetaType::QVariantList) {
    return value;
  }
  QList<QVariantMap> maps;
  const QVariantList values = value.toList();
  for (const QVariant &each : values) {
    maps.append(each.toMap());
  }
  return QVariant::fromValue(maps);
}

} // namespace

QDBusMessage messageOfNotification(const QString &name, const Notification &notification) {
  if (sizeOf(notification.object) + sizeOf(notification.userInfo) > kNotificationLimit) {
    throw Failure(u"this is more than one drop can hold; drop it in smaller portions"_s);
  }
  qDBusRegisterMetaType<QList<QVariantMap>>();
  QVariantMap info;
  for (auto entry = notification.userInfo.constBegin(); entry != notification.userInfo.constEnd(); ++entry) {
    info.insert(entry.key(), sendable(entry.value()));
  }
  QDBusMessage message = QDBusMessage::createSignal(kAgentPath, kAgentInterface, name);
  message << notification.object << info;
  return message;
}

Notification notificationOfMessage(const QDBusMessage &message) {
  if (message.signature() != u"sa{sv}") {
    refuse(u"its signature is \"%1\" instead of \"sa{sv}\""_s.arg(message.signature()));
  }
  const QVariantList arguments = message.arguments();
  Notification notification{arguments.at(0).toString(), {}};
  const QVariantMap given = mapOf(arguments.at(1), u"the user info"_s);
  for (const QStringView texts : {kDraggedFilesKey, kTitlesKey, kUrlsKey}) {
    const QString key = texts.toString();
    if (given.contains(key)) {
      notification.userInfo.insert(key, textsOf(given.value(key), key));
    }
  }
  if (const QString photos = kPhotoDataKey.toString(); given.contains(photos)) {
    notification.userInfo.insert(photos, albumsOf(given.value(photos)));
  }
  return notification;
}

} // namespace sonorel
