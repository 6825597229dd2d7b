// The three characters that would break the mount URL. Pure.
#pragma once

#include <QString>

namespace sonorel {

// "%" to "%25", "@" to "%40", ";" to "%3B"; every other character passes, a colon or a slash included.
[[nodiscard]] QString replaceWithEscapeSequencesInString(const QString &text);
// Every "%" with two hexadecimal digits that give an ASCII character.
[[nodiscard]] QString undoEscapeSequences(const QString &text);

} // namespace sonorel
