// The folder that the share is mounted on: what stands in the mount table about it, and how it is freed. None of it
// asks the mounted file system anything, so nothing here waits for a server.
// Any thread.
#pragma once

#include "mount/Outcome.h"

#include <optional>
#include <string>

namespace sonorel {

inline constexpr const char *kFileSystemType = "fuse.sonorel";
inline constexpr const char *kFileSystemSubtype = "sonorel";

// The absolute path as the mount table has it: the folder's parent is resolved, the folder itself is not touched.
// nullopt when there is no such parent.
[[nodiscard]] std::optional<std::string> realPoint(const std::string &point);
// The type of what is mounted there last; nullopt when nothing is.
[[nodiscard]] std::optional<std::string> mountedType(const std::string &realPoint);
[[nodiscard]] bool isMountPoint(const std::string &realPoint);
// An empty folder on which nothing is mounted. What a killed mount program left there is cleared away first.
[[nodiscard]] Outcome prepareMountPoint(const std::string &realPoint);

enum class Unmount {
  IfIdle,
  ByForce // also with open files and a server that does not answer; always at once
};
[[nodiscard]] Outcome unmountPoint(const std::string &realPoint, Unmount how);

} // namespace sonorel
