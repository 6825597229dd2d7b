// "//user:password@address[:port]/share", as the mount program reads it from its standard input. Every part may hold
// "%XX" for a byte; a "%" that begins no such thing stands for itself. The first ":" ends the user, the last "@" the
// password, so that a password may hold both. An IPv6 address stands in brackets when a port follows.
// Pure, any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sonorel {

struct MountUrl {
  std::string user;
  std::string password;
  std::string host;
  std::uint16_t port = 0; // 0: the usual ones
  std::string share;
};

// nullopt when it does not have the form, or a part that must not be empty is, or holds a zero byte.
[[nodiscard]] std::optional<MountUrl> parseMountUrl(std::string_view url);

} // namespace sonorel
