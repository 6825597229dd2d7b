// The mark in the names of this client's temporary files: made once for each data folder, so that a later start
// knows what it left behind. Main thread; blocks on the folder's disk.
#pragma once

#include <QString>

namespace sonorel {

// Eight hexadecimal digits. data is the host path of the data folder. Throws Failure when it cannot be kept.
[[nodiscard]] QString temporaryMark(const QString &data);

} // namespace sonorel
