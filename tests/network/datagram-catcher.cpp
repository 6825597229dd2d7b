// Prints what arrives at a UDP port, one datagram a line: the sender's address, a blank, the bytes in hexadecimal
// digits; "ready" first. Runs until it is ended. Usage: datagram-catcher PORT
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv) {
  sockaddr_in own{};
  own.sin_family = AF_INET;
  own.sin_port = htons(static_cast<in_port_t>(argc == 2 ? std::atoi(argv[1]) : 0));
  const int port = ::socket(AF_INET, SOCK_DGRAM, 0);
  if (own.sin_port == 0 || port < 0 || ::bind(port, reinterpret_cast<const sockaddr *>(&own), sizeof own) != 0) {
    std::perror("datagram-catcher");
    return EXIT_FAILURE;
  }
  std::puts("ready");
  std::fflush(stdout);
  for (;;) {
    std::array<unsigned char, 2048> bytes{};
    sockaddr_in sender{};
    socklen_t size = sizeof sender;
    const ssize_t got = ::recvfrom(port, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr *>(&sender), &size);
    if (got < 0) {
      return EXIT_FAILURE;
    }
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &sender.sin_addr, text.data(), text.size());
    std::printf("%s ", text.data());
    for (ssize_t i = 0; i < got; ++i) {
      std::printf("%02x", bytes[static_cast<std::size_t>(i)]);
    }
    std::puts("");
    std::fflush(stdout);
  }
}
