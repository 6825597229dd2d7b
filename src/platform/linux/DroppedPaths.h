// The paths of a drop before anybody uses them: a sender on the session bus is not known, so that only clean
// absolute local paths pass, and none that would lead into the client's own folders. Any thread.
#pragma once

#include "platform/Desktop.h"
#include "platform/Notifications.h"

#include <functional>
#include <optional>

namespace sonorel {

// The system's path for a host path; nullopt with a reason that names it for one that is refused, and for anything
// that is no absolute path.
using FromOutside = std::function<std::optional<QString>(const QString &hostPath, QString *reason)>;

// The notification with the paths that may pass, in order, radio entries untouched; what is refused is logged.
// nullopt when it named paths and none is left.
[[nodiscard]] std::optional<Notification> withCleanPaths(const Notification &notification,
                                                         const FromOutside &fromOutside, Desktop &desktop);

} // namespace sonorel
