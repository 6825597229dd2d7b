// What --help prints. The manual pages in docs say the same at more length.
#pragma once

namespace sonorel {

inline constexpr const char *kMountUsage = "usage: sonorel-mount POINT <URL\n";
inline constexpr const char *kUnmountUsage = "usage: sonorel-umount [-f] POINT\n";

inline constexpr const char *kMountHelp =
    R"(usage: sonorel-mount POINT <URL

Mounts a product's share on the empty folder POINT, for the user who runs it, and
goes on serving it in the background. The URL is read from the standard input:
    //user:password@address[:port]/share
Every part may hold %XX for a byte. Unmount with sonorel-umount POINT.

Exit status:
  0   the share is mounted and answers
  2   "Authentication error": user name, password or account refused
  3   "Permission error": the user may not use this share
  4   the product cannot be reached or does not answer
  5   the host name is not known
  6   the product has no such share
  7   no protocol in common: no file server, or too old a one
  8   the mount point is missing, no empty folder, or in use
  9   FUSE is not available
  64  wrong arguments, or no such URL on the standard input
  1   anything else
)";

inline constexpr const char *kUnmountHelp =
    R"(usage: sonorel-umount [-f] POINT

Unmounts what is mounted on POINT. With -f also when it is in use or its server
does not answer; what was being written is then lost.

Exit status:
  0   unmounted
  9   fusermount3 cannot be run
  10  nothing is mounted there
  11  it is in use
  64  wrong arguments
  1   anything else
)";

} // namespace sonorel
