// The IP address field of the add panel, cleaned as the user types. Pure.
#pragma once

#include <QString>

namespace sonorel {

inline constexpr qsizetype kAddressFieldLength = 15;

// The field's text after a change: each rule deletes one character, so that a pasted text is cleaned only in part.
[[nodiscard]] QString controlTextDidChange(const QString &text);
// The text could stand in the field: no rule would delete anything, however it was typed.
[[nodiscard]] bool fitsAddressField(const QString &text);

} // namespace sonorel
