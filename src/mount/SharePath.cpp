#include "mount/SharePath.h"

#include <cerrno>

namespace sonorel {

namespace {

constexpr size_t kLongestName = 255;
constexpr std::string_view kRefused = "\\:*?\"<>|";

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' || c == '.' ||
         c == '-' || c == '_';
}

} // namespace

std::string encodedPath(std::string_view path) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(path.size() * 3);
  for (const char c : path) {
    if (isPlain(c)) {
      encoded += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded += '%';
      encoded += kDigits[byte >> 4U];
      encoded += kDigits[byte & 15U];
    }
  }
  return encoded;
}

int nameError(std::string_view path) {
  if (path.find_first_of(kRefused) != std::string_view::npos) {
    return EINVAL;
  }
  while (!path.empty()) {
    const size_t slash = path.find('/');
    if (path.substr(0, slash).size() > kLongestName) {
      return ENAMETOOLONG;
    }
    path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
  }
  return 0;
}

} // namespace sonorel
