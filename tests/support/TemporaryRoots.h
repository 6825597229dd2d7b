// The roots of the path map in a temporary folder of their own, removed with all below them at the end.
#pragma once

#include "platform/linux/DataFolders.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <stdlib.h>

namespace sonorel::test {

class TemporaryRoots {
public:
  TemporaryRoots() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sonorel-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    m_base = pattern;
    roots.data = below("data");
    roots.runtime = below("runtime");
    roots.home = QStringLiteral("/home/anna");
    roots.resources = below("resources");
    roots.scripts = below("scripts");
    roots.embedded = below("data/Embedded/VB-SHARE$");
    roots.agent = below("bin/trackchute");
    roots.mountProgram = below("bin/sonorel-mount");
    roots.unmountProgram = below("bin/sonorel-umount");
    for (const char *folder : {"resources", "scripts", "bin", "outside"}) {
      std::filesystem::create_directory(m_base / folder);
    }
    prepareDataFolders(roots);
  }
  ~TemporaryRoots() {
    std::error_code ignored;
    std::filesystem::remove_all(m_base, ignored);
  }
  TemporaryRoots(const TemporaryRoots &) = delete;
  TemporaryRoots &operator=(const TemporaryRoots &) = delete;

  Roots roots;

  // A host path below the temporary folder.
  [[nodiscard]] QString below(const std::string &path) const {
    return QString::fromStdString((m_base / path).string());
  }
  void put(const std::string &path, const std::string &bytes) const {
    std::filesystem::create_directories((m_base / path).parent_path());
    std::ofstream(m_base / path, std::ios::binary) << bytes;
  }
  // An executable shell script.
  void putScript(const std::string &path, const std::string &lines) const {
    put(path, "#!/bin/sh\n" + lines + "\n");
    std::filesystem::permissions(m_base / path, std::filesystem::perms::owner_all);
  }
  [[nodiscard]] std::string bytes(const std::string &path) const {
    std::ifstream file(m_base / path, std::ios::binary);
    if (!file) {
      throw std::runtime_error("no such file: " + path);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  [[nodiscard]] bool exists(const std::string &path) const {
    return std::filesystem::exists(std::filesystem::symlink_status(m_base / path));
  }
  [[nodiscard]] const std::filesystem::path &base() const { return m_base; }

private:
  std::filesystem::path m_base;
};

} // namespace sonorel::test
