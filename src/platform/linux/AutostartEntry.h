// One file of the user's autostart folder that stands for a login item. The item's own path and its "Hide" stand
// under own keys, because "Hidden" means there that the entry has been deleted. Pure; any thread.
#pragma once

#include "platform/Desktop.h"

#include <QByteArray>

#include <optional>

namespace sonorel {

// command is the host path of the program that the entry starts.
[[nodiscard]] QByteArray encodeAutostartEntry(const LoginItem &item, const QString &command);
// The entry with that command where an entry of ours has one; all else, a command of the user's own included, as it
// stands.
[[nodiscard]] QByteArray withCommand(const QByteArray &bytes, const QString &command);
// nullopt for an entry that is not one of ours.
[[nodiscard]] std::optional<LoginItem> decodeAutostartEntry(const QByteArray &bytes);

} // namespace sonorel
