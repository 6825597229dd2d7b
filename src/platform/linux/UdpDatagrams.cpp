#include "platform/linux/UdpDatagrams.h"

#include "platform/linux/FileDescriptor.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <vector>

namespace sonorel {

namespace {

// Own addresses of the interfaces that are up; the loopback's only when there is no other.
std::vector<sockaddr_in> ownAddresses() {
  ifaddrs *found = nullptr;
  if (::getifaddrs(&found) != 0) {
    return {};
  }
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> list(found, &::freeifaddrs);
  std::vector<sockaddr_in> networks;
  std::vector<sockaddr_in> loopbacks;
  for (const ifaddrs *entry = found; entry; entry = entry->ifa_next) {
    if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET || (entry->ifa_flags & IFF_UP) == 0) {
      continue;
    }
    sockaddr_in own = *reinterpret_cast<const sockaddr_in *>(entry->ifa_addr);
    own.sin_port = 0;
    ((entry->ifa_flags & IFF_LOOPBACK) != 0 ? loopbacks : networks).push_back(own);
  }
  return networks.empty() ? loopbacks : networks;
}

bool sendFrom(const sockaddr_in &own, const QByteArray &bytes, const sockaddr_in &target) {
  const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const int yes = 1;
  if (!socket.isOpen() || ::setsockopt(socket.get(), SOL_SOCKET, SO_BROADCAST, &yes, sizeof yes) != 0 ||
      ::bind(socket.get(), reinterpret_cast<const sockaddr *>(&own), sizeof own) != 0) {
    return false;
  }
  return ::sendto(socket.get(), bytes.constData(), static_cast<std::size_t>(bytes.size()), 0,
                  reinterpret_cast<const sockaddr *>(&target), sizeof target) == bytes.size();
}

} // namespace

bool UdpDatagrams::broadcast(const QByteArray &bytes, const QString &address, quint16 port) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  target.sin_port = htons(port);
  if (::inet_pton(AF_INET, address.toLatin1().constData(), &target.sin_addr) != 1) {
    return false;
  }
  bool sent = false;
  for (const sockaddr_in &own : ownAddresses()) {
    sent = sendFrom(own, bytes, target) || sent;
  }
  return sent;
}

} // namespace sonorel
