#include "mount/MountUrl.h"

#include <charconv>

namespace sonorel {

namespace {

std::string decoded(std::string_view text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    unsigned char byte = 0;
    if (text[i] == '%' && i + 2 < text.size()) {
      const char *digits = text.data() + i + 1;
      const auto [end, error] = std::from_chars(digits, digits + 2, byte, 16);
      if (error == std::errc() && end == digits + 2) {
        plain += static_cast<char>(byte);
        i += 2;
        continue;
      }
    }
    plain += text[i];
  }
  return plain;
}

// A colon ends the host unless it stands inside an IPv6 address: in brackets, or one of several.
bool splitPlace(std::string_view place, MountUrl &url) {
  std::string_view host = place;
  std::string_view port;
  const size_t bracket = place.rfind(']');
  const size_t colon = place.rfind(':');
  const bool isBare = bracket == std::string_view::npos && place.find(':') != colon;
  if (colon != std::string_view::npos && !isBare && (bracket == std::string_view::npos || colon > bracket)) {
    host = place.substr(0, colon);
    port = place.substr(colon + 1);
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), url.port);
    if (error != std::errc() || end != port.data() + port.size() || url.port == 0) {
      return false;
    }
  }
  if (host.size() > 1 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  }
  url.host = decoded(host);
  return !url.host.empty();
}

bool hasZero(const MountUrl &url) {
  for (const std::string *part : {&url.user, &url.password, &url.host, &url.share}) {
    if (part->find('\0') != std::string::npos) {
      return true;
    }
  }
  return false;
}

} // namespace

std::optional<MountUrl> parseMountUrl(std::string_view text) {
  if (!text.starts_with("//")) {
    return std::nullopt;
  }
  text.remove_prefix(2);
  const size_t at = text.rfind('@');
  if (at == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view login = text.substr(0, at);
  const std::string_view rest = text.substr(at + 1);
  const size_t slash = rest.find('/');
  const size_t colon = login.find(':');
  if (slash == std::string_view::npos) {
    return std::nullopt;
  }
  MountUrl url;
  url.user = decoded(login.substr(0, colon));
  url.password = colon == std::string_view::npos ? std::string() : decoded(login.substr(colon + 1));
  std::string_view share = rest.substr(slash + 1);
  while (share.ends_with('/')) {
    share.remove_suffix(1);
  }
  url.share = decoded(share);
  const bool isShareName = !url.share.empty() && url.share.find_first_of("/\\") == std::string::npos;
  if (url.user.empty() || !isShareName || !splitPlace(rest.substr(0, slash), url) || hasZero(url)) {
    return std::nullopt;
  }
  return url;
}

} // namespace sonorel
