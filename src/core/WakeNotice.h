// What the message log says while a product that was woken is waited for. The view alone shows it: the text of a
// transfer comes back afterwards. Controller's thread.
#pragma once

#include "core/InterfaceController.h"
#include "core/state/MessageLog.h"
#include "core/state/Strings.h"

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
  bool m_shown = false;
};

} // namespace sonorel
