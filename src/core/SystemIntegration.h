// The client beside the user's session: the drop agent that it keeps running, the login items, the desktop-space
// poll and the eject of a stale server disk. Controller's thread.
#pragma once

#include "core/ClientPaths.h"
#include "core/state/Settings.h"
#include "platform/Desktop.h"
#include "platform/Loop.h"
#include "platform/Processes.h"
#include "platform/RunningApplications.h"
#include "platform/Scripts.h"

#include <QString>

namespace sonorel {

class SystemIntegration {
public:
  // What the window server reports while the switch to another space is under way.
  static constexpr qint64 kSpaceSwitching = 65537;

  // All references must outlive the object; the loop must not run any more when it ends.
  SystemIntegration(RunningApplications &applications, Processes &processes, Scripts &scripts, Desktop &desktop,
                    Loop &loop, Settings &settings, const ClientPaths &paths);
  ~SystemIntegration();
  SystemIntegration(const SystemIntegration &) = delete;
  SystemIntegration &operator=(const SystemIntegration &) = delete;

  // Ends the running drop agent, if any, and starts it again without waiting for it. One that cannot be started is
  // told once.
  void killTrackChuteAndLaunch();

  // False for an empty path and when the items could not be written. Does not look for duplicates.
  bool addLoginItem(const QString &path, bool hide);
  void removeLoginItem(const QString &path);
  void removeTrackChuteFromLoginItem();
  // An entry of an earlier place is replaced by the current bundle.
  void registerAsLoginItem();

  // `spacesObservingTimer`.
  void startObservingSpaces();
  void stopObservingSpaces();
  // The poll, once a second: a new number restarts the agent and is stored.
  void spaceChangeTimerFunction();
  void spaceChanged();

  void unmountVBShareUsingApplescript();

private:
  RunningApplications &m_applications;
  Processes &m_processes;
  Scripts &m_scripts;
  Desktop &m_desktop;
  Loop &m_loop;
  Settings &m_settings;
  const ClientPaths &m_paths;
  Loop::TimerId m_spacesObservingTimer = 0;
  bool m_agentMissed = false;
};

} // namespace sonorel
