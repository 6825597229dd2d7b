#include "platform/linux/FileDescriptor.h"
#include "platform/linux/UdpDatagrams.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

using namespace sonorel;

namespace {

// A receiver of the loopback's own broadcast address: nothing leaves the machine.
class Receiver {
public:
  Receiver() : m_socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    socklen_t size = sizeof address;
    if (::bind(m_socket.get(), reinterpret_cast<const sockaddr *>(&address), size) == 0 &&
        ::getsockname(m_socket.get(), reinterpret_cast<sockaddr *>(&address), &size) == 0) {
      port = ntohs(address.sin_port);
    }
  }

  QByteArray receive() {
    pollfd waiting{m_socket.get(), POLLIN, 0};
    if (::poll(&waiting, 1, 5000) != 1) {
      return {};
    }
    QByteArray bytes(2048, '\0');
    const auto size = ::recv(m_socket.get(), bytes.data(), static_cast<std::size_t>(bytes.size()), 0);
    return bytes.left(size);
  }

  quint16 port = 0;

private:
  FileDescriptor m_socket;
};

} // namespace

TEST(UdpDatagrams, BroadcastArrivesByteForByte) {
  Receiver receiver;
  ASSERT_NE(receiver.port, 0);
  QByteArray packet(102, '\xFF');
  packet[50] = '\0';
  EXPECT_TRUE(UdpDatagrams().broadcast(packet, QStringLiteral("127.255.255.255"), receiver.port));
  EXPECT_EQ(receiver.receive(), packet);
}

TEST(UdpDatagrams, RefusesWhatIsNoAddress) {
  EXPECT_FALSE(UdpDatagrams().broadcast("x", QStringLiteral("nowhere"), 9));
  EXPECT_FALSE(UdpDatagrams().broadcast("x", QString(), 9));
}
