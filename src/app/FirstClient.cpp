#include "app/FirstClient.h"

#include "app/DoorErrors.h"
#include "platform/linux/BusNames.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QVariantMap>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kBetweenTries = 100ms;
constexpr std::chrono::milliseconds kAnswer = 5s;
constexpr std::chrono::milliseconds kStarting = 5s;  // it owns its name as soon as its folders and settings are read
constexpr std::chrono::milliseconds kQuitting = 20s; // the pauses of a quit are six seconds, an unmount may take more

enum class Reopened { Yes, Quitting, NoAnswer };

bool isClientOn(const QDBusConnection &bus) {
  return bus.interface()->isServiceRegistered(kClientService);
}

Reopened reopen(const QDBusConnection &bus) {
  QDBusMessage activate =
      QDBusMessage::createMethodCall(kClientService, kClientPath, u"org.freedesktop.Application"_s, u"Activate"_s);
  activate << QVariantMap();
  const QDBusMessage answer = bus.call(activate, QDBus::Block, static_cast<int>(kAnswer.count()));
  if (answer.type() == QDBusMessage::ReplyMessage) {
    return Reopened::Yes;
  }
  return answer.errorName() == nameOf(DoorError::Busy) ? Reopened::Quitting : Reopened::NoAnswer;
}

} // namespace

Turn awaitTurn(const QDBusConnection &bus, const TurnHooks &hooks) {
  std::chrono::milliseconds patience = kStarting;
  bool isQuitting = false;
  for (std::chrono::milliseconds waited{0}; waited < patience; waited += kBetweenTries) {
    const bool isOnBus = isClientOn(bus);
    if (hooks.holdsLock() && !isOnBus) {
      return Turn::Ours;
    }
    if (isOnBus) {
      patience = kQuitting;
      const Reopened reopened = reopen(bus);
      if (reopened == Reopened::Yes) {
        return Turn::Theirs;
      }
      isQuitting = reopened == Reopened::Quitting;
      if (reopened == Reopened::NoAnswer && isClientOn(bus)) {
        waited += kAnswer;
      }
    }
    if (!hooks.pause(kBetweenTries)) {
      return Turn::GivenUp;
    }
  }
  return isQuitting ? Turn::StillQuitting : Turn::NoAnswer;
}

} // namespace sonorel
