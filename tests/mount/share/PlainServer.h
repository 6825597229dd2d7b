// A server that wants the password in clear.
#pragma once

#include "mount/share/ShareFixture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <mutex>
#include <thread>

namespace sonorel::test {

// Answers the first question of every guest as the oldest servers do: dialect "NT LM 0.12", a log-in for each user,
// and neither a challenge nor anything else but the password itself to answer. Keeps all that it is told.
class PlainServer {
public:
  PlainServer() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(m_socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address);
    ::listen(m_socket.get(), 8);
    m_thread = std::jthread([this] { serve(); });
  }
  ~PlainServer() { ::shutdown(m_socket.get(), SHUT_RDWR); }
  PlainServer(const PlainServer &) = delete;
  PlainServer &operator=(const PlainServer &) = delete;

  [[nodiscard]] std::string url() const { return "//vaultbox:Secret8@127.0.0.1:" + port() + "/VB-SHARE$"; }
  // It was asked, the password did not come with the questions, and that is what the program's end tells.
  void expectNoPassword(const Ended &result) const {
    EXPECT_EQ(result.status, 7) << result.output;
    EXPECT_EQ(result.output.find("Authentication"), std::string::npos) << "no other password would be of use";
    std::string upper = heard();
    EXPECT_NE(upper.find("NT LM 0.12"), std::string::npos) << "the server was not asked";
    for (char &c : upper) {
      c = static_cast<char>(::toupper(static_cast<unsigned char>(c)));
    }
    EXPECT_EQ(upper.find("SECRET8"), std::string::npos);
    EXPECT_EQ(upper.find(std::string("S\0E\0C\0R\0E\0T", 11)), std::string::npos);
  }

private:
  [[nodiscard]] std::string port() const {
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    ::getsockname(m_socket.get(), reinterpret_cast<sockaddr *>(&address), &size);
    return std::to_string(ntohs(address.sin_port));
  }
  [[nodiscard]] std::string heard() const {
    const std::lock_guard lock(m_mutex);
    return m_heard;
  }

  static constexpr size_t kFrame = 4;   // the length in front of every message
  static constexpr size_t kHeader = 32; // of a message
  static constexpr char kNegotiate = 0x72;

  void serve() {
    for (;;) {
      const FileDescriptor guest(::accept4(m_socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
      if (!guest.isOpen()) {
        return;
      }
      std::string question(4096, '\0');
      for (ssize_t got = 1; got > 0;) {
        got = ::recv(guest.get(), question.data(), question.size(), 0);
        if (got > 0) {
          const std::string words = question.substr(0, static_cast<size_t>(got));
          const std::lock_guard lock(m_mutex);
          m_heard += words;
          const std::string answer = answerTo(words);
          got = answer.empty() ? 0 : ::send(guest.get(), answer.data(), answer.size(), MSG_NOSIGNAL);
        }
      }
    }
  }

  static std::string answerTo(const std::string &question) {
    const std::string dialect("\x02NT LM 0.12\0", 12);
    const size_t place = question.find(dialect);
    if (question.size() < kFrame + kHeader || question[kFrame + 4] != kNegotiate || place == std::string::npos) {
      return {};
    }
    char index = 0;
    for (size_t at = kFrame + kHeader + 3; at < place; at = question.find('\0', at) + 1) {
      ++index;
    }
    std::string answer = question.substr(kFrame, kHeader);
    answer[9] = static_cast<char>(0x88); // an answer
    answer += '\x11';                    // seventeen words follow
    answer += index;
    answer += std::string("\0\x01\x01\0\x01\0", 6);   // a password for each user, unscrambled; one question at a time
    answer += std::string("\0\x40\0\0\0\0\x01\0", 8); // sizes of buffers
    answer += std::string(4 + 4 + 8 + 2 + 1 + 2, '\0'); // session, capabilities, time, zone, challenge, bytes: none
    std::string frame(kFrame, '\0');
    frame[3] = static_cast<char>(answer.size());
    return frame + answer;
  }

  FileDescriptor m_socket;
  mutable std::mutex m_mutex; // guards what follows
  std::string m_heard;
  std::jthread m_thread;
};

} // namespace sonorel::test
