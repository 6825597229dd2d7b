// Error numbers of the operating system as failures: which of them says that a file is not there, that the disk is
// full, or that a volume does not answer. Any thread.
#pragma once

#include "platform/Failure.h"

namespace sonorel {

[[nodiscard]] FailureKind failureKind(int error);
// "<system's own words>: <path>"
[[nodiscard]] Failure systemFailure(int error, const QString &path);
// For a question whether a name exists: true when the error proves that it does not. A name that the file system
// could not even hold is not there either.
[[nodiscard]] bool provesAbsence(int error);

} // namespace sonorel
