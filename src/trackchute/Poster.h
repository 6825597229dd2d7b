// The agent's side of the session bus: one notification out, one answer back. Main thread; blocks for the answers.
#pragma once

#include <QString>
#include <QStringList>

namespace sonorel::trackchute {

class Poster {
public:
  // Throws Failure when there is no session bus or no client on it.
  Poster();

  // The client's `DeviceName`; empty when it does not answer.
  [[nodiscard]] QString deviceName() const;
  // Posts one drag and returns when the client has received it. Throws Failure when it is too large for one
  // notification or when the client does not answer.
  void postDrag(const QString &object, const QStringList &draggedFiles);
};

} // namespace sonorel::trackchute
