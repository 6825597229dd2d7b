#include "mount/share/ShareFixture.h"

#include "mount/MountPoint.h"

#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string_view>
#include <thread>

namespace sonorel::test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

// A network of one machine, without any other of this machine's programs in it.
void raiseLoopback() {
  const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  ifreq request = {};
  std::strcpy(request.ifr_name, "lo");
  request.ifr_flags = IFF_UP;
  ::ioctl(socket.get(), SIOCSIFFLAGS, &request);
}

// Once for the whole program: a process that has threads could not do it any more, and one that has left a namespace
// would take its mounts for lost.
bool enterNamespaces() {
  static const bool isInside = [] {
    if (::geteuid() != 0 || ::unshare(CLONE_NEWNS | CLONE_NEWNET) != 0) {
      return false;
    }
    raiseLoopback();
    return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
  }();
  return isInside;
}

} // namespace

std::string ShareFixture::missing() {
  static const std::string reason = [] {
    const ToolResult possible = runChild({SONOREL_STANDIN, {"possible"}, {}, {}, -1}, 60s, {});
    if (!succeeded(possible)) {
      const std::string told = possible.output.trimmed().toStdString();
      return told.empty() ? std::string("standin possible failed") : told;
    }
    return std::string(::geteuid() == 0 && !enterNamespaces() ? "no namespaces for this user" : "");
  }();
  return reason;
}

void ShareFixture::SetUpTestSuite() {
  if (!missing().empty()) {
    return;
  }
  std::string pattern = (fs::temp_directory_path() / "sonorel-share-XXXXXX").string();
  ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
  s_base = pattern;
  s_product = std::make_unique<StandIn>(s_base / "product");
}

void ShareFixture::TearDownTestSuite() {
  s_product.reset();
  std::error_code ignored;
  if (!s_base.empty()) {
    fs::remove_all(s_base, ignored);
  }
}

void ShareFixture::SetUp() {
  const std::string reason = missing();
  if (!reason.empty() && ::access("/dev/fuse", F_OK) == 0 && enterNamespaces()) {
    FAIL() << reason;
  }
  if (!reason.empty()) {
    GTEST_SKIP() << reason;
  }
  static int number = 0;
  m_folder = s_base / ("test-" + std::to_string(++number));
  m_point = m_folder / "VB-SHARE$";
  fs::create_directories(m_point);
  for (const auto &entry : fs::directory_iterator(tree() / "Music")) {
    fs::remove_all(entry.path());
  }
}

void ShareFixture::TearDown() {
  if (m_point.empty()) {
    return;
  }
  while (!mountType().empty()) {
    ASSERT_EQ(::umount2(m_point.c_str(), MNT_DETACH), 0);
  }
  EXPECT_TRUE(allEndWithin(8s)) << "a mount program goes on without its mount";
}

Ended ShareFixture::run(const std::vector<std::string> &words, const std::string &input,
                        std::chrono::milliseconds deadline) {
  HostCommand command;
  command.program = QByteArray::fromStdString(words.front());
  for (size_t i = 1; i < words.size(); ++i) {
    command.arguments.append(QByteArray::fromStdString(words[i]));
  }
  command.input = QByteArray::fromStdString(input);
  ToolResult result;
  const auto time = timeOf([&] { result = runChild(command, deadline, {}); });
  return {result.status, result.output.toStdString(), time, result.ending};
}

Ended ShareFixture::mount(const std::string &url, std::chrono::milliseconds deadline) const {
  return run({SONOREL_BIN "/sonorel-mount", m_point.string()}, url, deadline);
}

Ended ShareFixture::unmount(bool isForced) const {
  std::vector<std::string> words{SONOREL_BIN "/sonorel-umount", m_point.string()};
  if (isForced) {
    words.insert(words.begin() + 1, "-f");
  }
  return run(words);
}

void ShareFixture::mounted() {
  const Ended result = mount(product().url());
  ASSERT_EQ(result.status, 0) << result.output;
  ASSERT_EQ(result.output, "");
  ASSERT_EQ(mountType(), "fuse.sonorel");
}

Ended ShareFixture::copy(const fs::path &from, const fs::path &to) const {
  return run({"/bin/cp", "-p", from.string(), to.string()});
}

std::string ShareFixture::mountType() const {
  return mountedType(realPoint(m_point.string()).value_or("")).value_or("");
}

std::vector<int> ShareFixture::programs() const {
  std::vector<int> found;
  for (const auto &entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) {
      continue;
    }
    // By hand: a process may end between two calls, which a stream takes for an exception.
    const FileDescriptor file(::open((entry.path() / "cmdline").c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 4096> block = {};
    const ssize_t size = ::read(file.get(), block.data(), block.size());
    const std::string_view words(block.data(), static_cast<size_t>(std::max<ssize_t>(size, 0)));
    if (words.find("sonorel-mount") != std::string::npos && words.find(m_point.string()) != std::string::npos) {
      found.push_back(std::stoi(name));
    }
  }
  return found;
}

bool ShareFixture::allEndWithin(std::chrono::milliseconds time) const {
  const auto end = std::chrono::steady_clock::now() + time;
  while (!programs().empty()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(10ms);
  }
  return true;
}

void ShareFixture::put(const fs::path &file, const std::string &content) {
  std::ofstream(file, std::ios::binary) << content;
}

std::string ShareFixture::bytes(const fs::path &file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream) << file;
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::chrono::milliseconds ShareFixture::timeOf(const std::function<void()> &call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

std::string ShareFixture::noise(size_t size, unsigned seed) {
  std::mt19937 random(seed);
  std::string content(size, '\0');
  for (char &c : content) {
    c = static_cast<char>(random());
  }
  return content;
}

} // namespace sonorel::test
