// A product behind a network that carries little: slow is not dead.
#include "mount/share/ShareFixture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <thread>

namespace sonorel::test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

// Passes on what one guest and the server say to each other, so many bytes in a second.
class SlowRoad {
public:
  SlowRoad(const std::string &port, size_t bytesInASecond)
      : m_listener(newSocket()), m_server(addressOf(static_cast<std::uint16_t>(std::stoi(port)))),
        m_rate(bytesInASecond) {
    const sockaddr_in any = addressOf(0);
    ::bind(m_listener.get(), reinterpret_cast<const sockaddr *>(&any), sizeof any);
    ::listen(m_listener.get(), 1);
    m_thread = std::jthread([this] { serve(); });
  }
  ~SlowRoad() {
    m_isEnding = true;
    ::shutdown(m_listener.get(), SHUT_RDWR);
  }
  SlowRoad(const SlowRoad &) = delete;
  SlowRoad &operator=(const SlowRoad &) = delete;
  [[nodiscard]] std::string port() const {
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    ::getsockname(m_listener.get(), reinterpret_cast<sockaddr *>(&address), &size);
    return std::to_string(ntohs(address.sin_port));
  }

private:
  static constexpr size_t kSip = 4096;

  // Holds little, so that nobody takes for sent what still waits here.
  static FileDescriptor newSocket() {
    FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int little = 16 * 1024;
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVBUF, &little, sizeof little);
    return socket;
  }
  static sockaddr_in addressOf(std::uint16_t port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
  }
  void serve() {
    const FileDescriptor guest(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
    const FileDescriptor server = newSocket();
    if (!guest.isOpen() ||
        ::connect(server.get(), reinterpret_cast<const sockaddr *>(&m_server), sizeof m_server) != 0) {
      return;
    }
    const std::jthread back([&] { pass(server.get(), guest.get()); });
    pass(guest.get(), server.get());
  }
  void pass(int from, int to) const {
    std::array<char, kSip> sip = {};
    while (!m_isEnding) {
      const ssize_t got = ::recv(from, sip.data(), sip.size(), 0);
      if (got <= 0 || ::send(to, sip.data(), static_cast<size_t>(got), MSG_NOSIGNAL) != got) {
        break;
      }
      std::this_thread::sleep_for(std::chrono::microseconds(static_cast<size_t>(got) * 1'000'000 / m_rate));
    }
    ::shutdown(from, SHUT_RDWR);
    ::shutdown(to, SHUT_RDWR);
  }

  FileDescriptor m_listener;
  sockaddr_in m_server;
  size_t m_rate;
  std::atomic<bool> m_isEnding = false;
  std::jthread m_thread;
};

class SlowProduct : public ShareFixture {};

} // namespace

TEST_F(SlowProduct, GetsAndGivesItsFilesAllTheSame) {
  const SlowRoad road(product().port(), 120'000);
  const Ended result = mount("//vaultbox:p%40ss%3B100%25:x@127.0.0.1:" + road.port() + "/VB-SHARE$");
  ASSERT_EQ(result.status, 0) << result.output;
  const std::string content = noise(800'000);
  put(folder() / "song", content);
  const Ended there = copy(folder() / "song", point() / "Music/song");
  EXPECT_EQ(there.status, 0) << there.output;
  EXPECT_GT(there.time, 4s) << "the road is not slow";
  EXPECT_TRUE(bytes(tree() / "Music/song") == content);
  const Ended back = copy(point() / "Music/song", folder() / "back");
  EXPECT_EQ(back.status, 0) << back.output;
  EXPECT_TRUE(bytes(folder() / "back") == content);
  EXPECT_EQ(unmount().status, 0);
  EXPECT_TRUE(allEndWithin(2s)); // before the road ends
}

} // namespace sonorel::test
