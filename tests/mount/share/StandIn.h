// A product for the tests of the mount: Samba on a port of its own, started and stopped by tests/product/standin.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace sonorel::test {

class StandIn {
public:
  // Options as in smb.conf. Throws when the server does not start.
  explicit StandIn(std::filesystem::path folder, const std::vector<std::string> &options = {});
  ~StandIn();
  StandIn(const StandIn &) = delete;
  StandIn &operator=(const StandIn &) = delete;

  // One of the script's commands. Throws when it fails.
  std::string tell(const std::string &command, const std::vector<std::string> &arguments = {}) const;
  [[nodiscard]] const std::string &port() const { return m_port; }
  // The share as it is on the server's own disk.
  [[nodiscard]] std::filesystem::path tree() const { return m_folder / "share"; }
  [[nodiscard]] std::string url(const std::string &login = "vaultbox:p%40ss%3B100%25:x",
                                const std::string &share = "VB-SHARE$") const {
    return "//" + login + "@localhost:" + m_port + '/' + share;
  }

private:
  std::filesystem::path m_folder;
  std::string m_port;
};

} // namespace sonorel::test
