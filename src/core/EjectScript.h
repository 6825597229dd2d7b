// The Finder script by which the first platform ejects the server disk. A platform with scripts runs this text; the
// others do what it says.
#pragma once

#include <QString>

namespace sonorel {

[[nodiscard]] QString ejectScript();

} // namespace sonorel
