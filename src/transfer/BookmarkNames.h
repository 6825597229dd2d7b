// What a bookmark is called on the server and what its file holds. Pure functions; any thread.
#pragma once

#include <QString>

namespace sonorel {

inline constexpr quint64 kLargestBookmark = 16ULL * 1024 * 1024; // bytes

// What every bookmark file begins with; the address follows, and nothing after it.
inline constexpr QStringView kShortcutHead = u"[InternetShortcut]\nURL=";

[[nodiscard]] QString shortcutText(const QString &address);
// The address's first four characters, in a bookmark file's text.
[[nodiscard]] QString schemeOf(const QString &shortcutText);
// The file name of a title: cleaned, ".url" behind it, no full stop at either end, at most 255 bytes.
[[nodiscard]] QString bookmarkFileName(const QString &title);

} // namespace sonorel
