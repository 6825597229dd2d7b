// Our own programs and the drop agent, known by the names they own, never by a process name. Any thread but the main
// one; waits for the bus, at most seconds.
#pragma once

#include <QString>

#include <vector>

namespace sonorel {

struct RunningApplication {
  QString name;             // "Sonorel", "TrackChute", "iTunes"
  QString path;             // bundle path in the system's own paths
  QString bundleIdentifier; // "com.orv.TrackChute"
  qint64 processId = 0;
};

class RunningApplications {
public:
  virtual ~RunningApplications() = default;
  // Never throws; empty when it cannot be told.
  [[nodiscard]] virtual std::vector<RunningApplication> launched() = 0;
  // Ends that very process and waits a moment for it; nothing happens when it has gone.
  virtual void end(const RunningApplication &application) = 0;
};

} // namespace sonorel
