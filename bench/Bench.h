// What the measurements share: seconds of a piece of work, a folder of their own, and the line that they print.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

namespace sonorel::bench {

[[nodiscard]] inline double secondsOf(const std::function<void()> &work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class Folder {
public:
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sonorel-bench-XXXXXX").string();
    m_path = ::mkdtemp(pattern.data());
  }
  ~Folder() {
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
  }
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;
  [[nodiscard]] const std::filesystem::path &path() const { return m_path; }

private:
  std::filesystem::path m_path;
};

// "row 1  whole transfer ...  1.23 (bound 1.5)  ok"; false when the bound is missed.
bool report(int row, const std::string &what, double measured, double bound, const std::string &unit);

bool transferOf300Tracks();
bool bigFileOntoShare();
bool smallFilesOntoShare();
bool favouritesOf100000Titles();
bool mergeInto100000Titles();
bool dropOf20000Paths();
bool mappingOf20000Pictures();

} // namespace sonorel::bench
