// The client that was started first, as a later start sees it. Main thread; waits for the bus.
#pragma once

#include <QDBusConnection>

namespace sonorel {

[[nodiscard]] bool isClientOn(const QDBusConnection &bus);
// Re-opens the first client; waits some seconds for one that is still starting. False when there is none to answer.
[[nodiscard]] bool activateFirstClient(const QDBusConnection &bus);

} // namespace sonorel
