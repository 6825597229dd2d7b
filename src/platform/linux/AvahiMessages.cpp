#include "platform/linux/AvahiMessages.h"

#include <QDBusArgument>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

// interface, protocol, name, type, domain, flags
constexpr char kItemSignature[] = "iisssu";
// interface, protocol, name, type, domain, host name, protocol of the address, address, port, text record, flags
constexpr char kFoundSignature[] = "iissssisqaayu";
constexpr uint kNoFlags = 0;

bool hasSignature(const QDBusMessage &message, const char *signature) {
  return message.type() == QDBusMessage::SignalMessage && message.signature() == QLatin1StringView(signature);
}

Service serviceOf(const QList<QVariant> &arguments) {
  return {arguments.at(2).toString(), arguments.at(3).toString(), arguments.at(4).toString()};
}

QDBusMessage serverCall(const QString &method, const QVariantList &arguments) {
  QDBusMessage call =
      QDBusMessage::createMethodCall(QString::fromLatin1(kAvahi), u"/"_s, QString::fromLatin1(kAvahiServer), method);
  call.setArguments(arguments);
  return call;
}

} // namespace

std::optional<AvahiItem> itemOf(const QDBusMessage &message) {
  if (!hasSignature(message, kItemSignature)) {
    return std::nullopt;
  }
  const QList<QVariant> arguments = message.arguments();
  return AvahiItem{arguments.at(0).toInt(), serviceOf(arguments)};
}

std::optional<ResolvedService> resolvedServiceOf(const QDBusMessage &message) {
  if (!hasSignature(message, kFoundSignature)) {
    return std::nullopt;
  }
  const QList<QVariant> arguments = message.arguments();
  ResolvedService resolved;
  resolved.service = serviceOf(arguments);
  resolved.hostName = arguments.at(5).toString();
  resolved.address = arguments.at(7).toString();
  resolved.port = arguments.at(8).value<ushort>();
  resolved.textRecord = textRecordOf(qdbus_cast<QList<QByteArray>>(arguments.at(9)));
  return resolved;
}

QMap<QByteArray, QByteArray> textRecordOf(const QList<QByteArray> &reversed) {
  QMap<QByteArray, QByteArray> record;
  for (const QByteArray &text : reversed) { // the first one published comes last and stays
    const qsizetype equals = text.indexOf('=');
    const QByteArray key = equals < 0 ? text : text.left(equals);
    if (!key.isEmpty()) {
      record.insert(key, equals < 0 ? QByteArray() : text.mid(equals + 1));
    }
  }
  return record;
}

QDBusMessage serviceBrowserNew(const QString &type, const QString &domain) {
  return serverCall(u"ServiceBrowserNew"_s, {kEveryInterface, kIPv4, type, domain, kNoFlags});
}

QDBusMessage serviceResolverNew(int interface, const Service &service) {
  return serverCall(u"ServiceResolverNew"_s,
                    {interface, kIPv4, service.name, service.type, service.domain, kIPv4, kNoFlags});
}

} // namespace sonorel
