// What asks the program to end from outside: SIGTERM, SIGINT and SIGHUP, and a session bus that goes away. Main
// thread. Constructed before any other thread starts, because the signals must be blocked in all of them.
// Each becomes ApplicationController::endRequested, see core/QuitRequests.h.
#pragma once

#include "platform/linux/FileDescriptor.h"

#include <QDBusConnection>
#include <QObject>
#include <QSocketNotifier>

#include <chrono>
#include <functional>
#include <optional>

namespace sonorel {

class EndRequests final : public QObject {
  Q_OBJECT

public:
  EndRequests();

  // For a start that waits for something else and observes nothing yet: true as soon as a signal has come.
  [[nodiscard]] bool arrivesWithin(std::chrono::milliseconds time) const;
  // requested is called once for each signal, on the main thread. 15 seconds after the second signal the process
  // ends, whatever still waits.
  void observe(const QDBusConnection &bus, std::function<void()> requested);

private Q_SLOTS:
  void busLost();

private:
  void readSignal();

  FileDescriptor m_signals;
  std::optional<QSocketNotifier> m_notifier;
  std::function<void()> m_requested;
  int m_signalsSeen = 0;
};

} // namespace sonorel
