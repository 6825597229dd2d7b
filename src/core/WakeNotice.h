// What the message log says while a product that was woken is waited for. The view alone shows it: what it showed
// before comes back afterwards. Controller's thread.
#pragma once

#include "core/InterfaceController.h"
#include "core/state/MessageLog.h"
#include "core/state/Strings.h"

#include <QString>

#include <optional>

namespace sonorel {

class WakeNotice {
public:
  // All references must outlive the object.
  WakeNotice(Strings &strings, MessageLog &log, InterfaceController &interface)
      : m_strings(strings), m_log(log), m_interface(interface) {}

  // People see it at once: what follows blocks the controller's thread.
  void show();
  // The attempts to connect are over. Nothing when nothing was shown.
  void end();

private:
  Strings &m_strings;
  MessageLog &m_log;
  InterfaceController &m_interface;
  std::optional<QString> m_before; // what the view showed; none while the notice is not there
};

} // namespace sonorel
