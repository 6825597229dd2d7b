#include "mount/Sockets.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace sonorel {

namespace {

constexpr int kHighestDescriptor = 64; // the program opens a dozen, always the lowest numbers

bool isNetworkStream(int fd) {
  int domain = 0;
  int type = 0;
  socklen_t size = sizeof domain;
  if (::getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &domain, &size) != 0) {
    return false;
  }
  size = sizeof type;
  return (domain == AF_INET || domain == AF_INET6) && ::getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &size) == 0 &&
         type == SOCK_STREAM;
}

bool isEstablished(int fd) {
  tcp_info facts = {};
  socklen_t size = sizeof facts;
  return ::getsockopt(fd, IPPROTO_TCP, TCP_INFO, &facts, &size) == 0 && facts.tcpi_state == TCP_ESTABLISHED;
}

} // namespace

bool isConnectionAlive() {
  for (int fd = 0; fd < kHighestDescriptor; ++fd) {
    if (isNetworkStream(fd) && isEstablished(fd)) {
      return true;
    }
  }
  return false;
}

void cutConnections() {
  for (int fd = 0; fd < kHighestDescriptor; ++fd) {
    if (isNetworkStream(fd)) {
      ::shutdown(fd, SHUT_RDWR);
    }
  }
}

} // namespace sonorel
