// Passwords as the property files keep them: a keyed archive of the text. It only serialises; no cipher is involved.
// Pure.
#pragma once

#include "platform/PropertyLists.h"

namespace sonorel {

[[nodiscard]] QByteArray encrypt(PropertyLists &lists, const QString &password);
// A text that somebody wrote by hand is taken as it is; anything malformed is empty.
[[nodiscard]] QString decrypt(PropertyLists &lists, const QVariant &stored);

} // namespace sonorel
