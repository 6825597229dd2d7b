// An open descriptor that is closed with its owner. Not shared between threads.
#pragma once

#include <unistd.h>

#include <utility>

namespace sonorel {

class FileDescriptor {
public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : m_fd(fd) {}
  FileDescriptor(FileDescriptor &&other) noexcept : m_fd(other.release()) {}
  FileDescriptor &operator=(FileDescriptor &&other) noexcept {
    if (this != &other) {
      reset(other.release());
    }
    return *this;
  }
  FileDescriptor(const FileDescriptor &) = delete;
  FileDescriptor &operator=(const FileDescriptor &) = delete;
  ~FileDescriptor() { reset(); }

  [[nodiscard]] bool isOpen() const { return m_fd >= 0; }
  [[nodiscard]] int get() const { return m_fd; }
  [[nodiscard]] int release() { return std::exchange(m_fd, -1); }
  void reset(int fd = -1) {
    if (m_fd >= 0) {
      ::close(m_fd);
    }
    m_fd = fd;
  }

private:
  int m_fd = -1;
};

} // namespace sonorel
