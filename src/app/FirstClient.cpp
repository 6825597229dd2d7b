#include "app/FirstClient.h"

#include "platform/linux/BusNames.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QVariantMap>

#include <chrono>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace sonorel {

namespace {

constexpr int kTries = 50;
constexpr auto kBetweenTries = 100ms; // a client owns its name as soon as its folders and settings are read

} // namespace

bool isClientOn(const QDBusConnection &bus) {
  return bus.interface()->isServiceRegistered(kClientService);
}

bool activateFirstClient(const QDBusConnection &bus) {
  for (int i = 0; i < kTries; ++i) {
    if (isClientOn(bus)) {
      QDBusMessage activate = QDBusMessage::createMethodCall(kClientService, kClientPath,
                                                             u"org.freedesktop.Application"_s, u"Activate"_s);
      activate << QVariantMap();
      return bus.call(activate).type() == QDBusMessage::ReplyMessage;
    }
    std::this_thread::sleep_for(kBetweenTries);
  }
  return false;
}

} // namespace sonorel
