// How a service of this folder learns which host path stands behind one of the system's own paths.
#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace sonorel {

// nullopt when none can. Any thread.
using HostPath = std::function<std::optional<QString>(const QString &path)>;

} // namespace sonorel
