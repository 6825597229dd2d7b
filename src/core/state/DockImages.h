// The names that `setDockIcon` takes and the window's state carries: the images of the dock icon, and the one name
// that makes it pulse. Constants only; any thread. Read next: View.h.
#pragma once

#include <QString>

namespace sonorel {

inline const auto kConnectImage = QStringLiteral("Connect");
inline const auto kDisconnectImage = QStringLiteral("Disconnect");
inline const auto kQuittingImage = QStringLiteral("NewAppIcon");
inline const auto kTransferIcon = QStringLiteral("Transfer"); // names no image: the first two alternate

} // namespace sonorel
