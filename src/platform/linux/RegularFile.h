// Reading files of which nothing is known but the name: devices, pipes and files of any size stand under every name.
// Standard library only, for the programs that are started once for each track. Any thread.
#pragma once

#include "platform/linux/FileDescriptor.h"

#include <optional>
#include <string>

namespace sonorel {

// For reading; not open when there is no regular file. Never blocks on a pipe, never opens a device.
[[nodiscard]] FileDescriptor openRegularFile(const std::string &path);
// From its beginning to its end; nullopt when it cannot be read or holds more than limit bytes.
[[nodiscard]] std::optional<std::string> wholeOf(const FileDescriptor &file, std::size_t limit);

} // namespace sonorel
