#include "scripts/TrackPicture.h"

#include "platform/linux/RegularFile.h"
#include "scripts/EmbeddedPicture.h"
#include "scripts/JpegPicture.h"

#include <cctype>
#include <optional>
#include <stdexcept>
#include <vector>

namespace sonorel {

namespace {

constexpr const char *kNames[] = {"cover", "folder", "front"};
constexpr const char *kExtensions[] = {"jpg", "jpeg", "png"};

std::string withUpperCase(std::string text, std::size_t letters) {
  for (std::size_t i = 0; i < letters && i < text.size(); ++i) {
    text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
  }
  return text;
}

// In the spellings that people and programs use. A fixed list instead of a look through the folder: it costs the same
// beside ten thousand tracks, for each of which it is asked.
std::vector<std::string> fileNames() {
  std::vector<std::string> names;
  for (const std::string name : kNames) {
    for (const std::string extension : kExtensions) {
      for (const std::size_t letters : {std::size_t{0}, std::size_t{1}, name.size()}) {
        names.push_back(withUpperCase(name, letters) + '.' + extension);
        names.push_back(withUpperCase(name, letters) + '.' + withUpperCase(extension, extension.size()));
      }
    }
  }
  return names;
}

class Search {
public:
  explicit Search(std::string converter) : m_converter(std::move(converter)) {}

  [[nodiscard]] bool tries(std::string bytes, const std::string &name) {
    try {
      if (bytes.size() > kLargestPicture) {
        throw std::runtime_error("it is too large");
      }
      m_found = jpegOf(std::move(bytes), m_converter);
      return true;
    } catch (const std::exception &failure) {
      m_reason += "; " + name + ": " + failure.what();
      return false;
    }
  }

  [[nodiscard]] bool triesFile(const std::string &path) {
    const FileDescriptor file = openRegularFile(path);
    if (!file.isOpen()) {
      return false;
    }
    auto bytes = wholeOf(file, kLargestPicture);
    if (!bytes || bytes->empty()) {
      m_reason += "; " + path + ": it is empty, too large or cannot be read";
      return false;
    }
    return tries(std::move(*bytes), path);
  }

  [[nodiscard]] std::string &found() { return m_found; }
  [[nodiscard]] const std::string &reason() const { return m_reason; }

private:
  std::string m_converter;
  std::string m_found;
  std::string m_reason; // of every picture that was passed over
};

} // namespace

std::string pictureOfTrack(const std::string &track, const std::string &converter) {
  Search search(converter);
  std::string embedded = embeddedPicture(track);
  if (!embedded.empty() && search.tries(std::move(embedded), "in the track")) {
    return std::move(search.found());
  }
  const std::string folder = track.substr(0, track.rfind('/') + 1);
  for (const std::string &name : fileNames()) {
    if (search.triesFile(folder + name)) {
      return std::move(search.found());
    }
  }
  throw std::runtime_error("the track has no picture" + search.reason());
}

} // namespace sonorel
