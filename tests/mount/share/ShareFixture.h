// The mount program on a real share, in a mount and a network namespace of this test program where the user may have
// them. Each test has a mount point of its own and unmounts it. Without FUSE the tests are skipped; for root, who can
// have everything, a missing thing is a failure.
#pragma once

#include "mount/share/StandIn.h"
#include "platform/linux/ChildProcess.h"
#include "platform/linux/FileDescriptor.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>

namespace sonorel::test {

struct Ended {
  int status = -1;
  std::string output;
  std::chrono::milliseconds time{0};
  ToolEnding ending = ToolEnding::NotStarted;
};

class ShareFixture : public testing::Test {
protected:
  static void SetUpTestSuite();
  static void TearDownTestSuite();
  void SetUp() override;
  void TearDown() override;

  [[nodiscard]] static Ended run(const std::vector<std::string> &words, const std::string &input = {},
                                 std::chrono::milliseconds deadline = std::chrono::seconds(60));
  [[nodiscard]] Ended mount(const std::string &url,
                            std::chrono::milliseconds deadline = std::chrono::seconds(20)) const;
  [[nodiscard]] Ended unmount(bool isForced = false) const;
  // Mounts the stand-in's share; the test cannot go on when that fails.
  void mounted();
  [[nodiscard]] Ended copy(const std::filesystem::path &from, const std::filesystem::path &to) const;

  [[nodiscard]] const std::filesystem::path &point() const { return m_point; }
  [[nodiscard]] std::filesystem::path tree() const { return product().tree(); }
  [[nodiscard]] static StandIn &product() { return *s_product; }
  // A folder for what a test needs beside the share.
  [[nodiscard]] const std::filesystem::path &folder() const { return m_folder; }
  // The type in the mount table; empty when nothing is mounted at the point.
  [[nodiscard]] std::string mountType() const;
  // Of the mount programs that run for this test's point.
  [[nodiscard]] std::vector<int> programs() const;
  // Waits until no such program runs any more; false when that takes longer.
  [[nodiscard]] bool allEndWithin(std::chrono::milliseconds time) const;

  static void put(const std::filesystem::path &file, const std::string &bytes);
  [[nodiscard]] static std::string bytes(const std::filesystem::path &file);
  [[nodiscard]] static std::chrono::milliseconds timeOf(const std::function<void()> &call);
  // What a random file holds: no run of zeros, every block different.
  [[nodiscard]] static std::string noise(size_t size, unsigned seed = 1);

private:
  static std::string missing();

  static inline std::unique_ptr<StandIn> s_product;
  static inline std::filesystem::path s_base;
  std::filesystem::path m_folder;
  std::filesystem::path m_point;
};

} // namespace sonorel::test
