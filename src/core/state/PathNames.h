// The questions about a path and its last component that naming depends on. Pure text; names on the server may hold
// backslashes and line feeds, so no path class of the platform is used. Any thread.
#pragma once

#include <QString>
#include <QStringList>

namespace sonorel {

// The last component, trailing "/" ignored; empty for "/" and "".
[[nodiscard]] QString lastPathComponent(const QString &path);
// What follows the last "." of the last component, unless that "." is its first character.
[[nodiscard]] QString pathExtension(const QString &path);
// The last component without its extension and the "." before it.
[[nodiscard]] QString nameWithoutExtension(const QString &path);
// Absolute, and every component names something below the one before.
[[nodiscard]] bool isPlainPath(const QString &path);
[[nodiscard]] QString withExtension(const QString &name, const QString &extension);

} // namespace sonorel
