// What the desktop asks of the running program: to end, to show itself again, to hide its window. Controller's
// thread.
#pragma once

#include "core/ConnectFlow.h"
#include "core/state/Settings.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"

#include <chrono>
#include <functional>
#include <stop_token>

namespace sonorel {

enum class TerminateReply { Now, Cancel };

class ApplicationEvents {
public:
  static constexpr std::chrono::milliseconds kPauseAtQuit{1'000};
  static constexpr std::chrono::milliseconds kPauseBeforeDisconnect{1'000};
  static constexpr std::chrono::milliseconds kPauseAfterDisconnect{2'000};

  // What other roles do at their place.
  struct Hooks {
    std::function<void()> performFirstLaunchCheck;
    std::function<void()> killTrackChuteAndLaunch;
    std::function<void()> awaitTransfer; // a cancelled one that has not ended yet
    std::function<void()> stopObservingSpaces;
    std::function<std::stop_token()> stop; // ends the pauses
  };

  // All references must outlive the object. preferences: the per-user "LastPreferences.plist".
  ApplicationEvents(ConnectFlow &connectFlow, const ConnectParts &parts, Settings &preferences, Clock &clock,
                    Desktop &desktop, Hooks hooks);

  // Cancel while a transfer runs; the user is told why.
  [[nodiscard]] TerminateReply applicationShouldTerminate();
  // Always false: everything is done here.
  bool applicationShouldHandleReopen(bool hasVisibleWindows);
  void windowWillClose();

private:
  void savePreferences();
  void pause(std::chrono::milliseconds duration);
  void refuseQuit();
  void leaveProduct();
  void leaveLostShare();
  void reopen();

  ConnectFlow &m_connectFlow;
  ConnectParts m_parts;
  Settings &m_preferences;
  Clock &m_clock;
  Desktop &m_desktop;
  Hooks m_hooks;
};

} // namespace sonorel
