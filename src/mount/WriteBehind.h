// Lets programs go on while what they have written is on its way to the server: one block is sent while the next is
// taken over from the kernel. Everything else waits until nothing is on its way, so that files and connection are
// only ever used by one thread at a time. A block that could not be sent breaks its file, which the program learns
// from its next write or, at the latest, from its close(). One thread calls; a thread of its own sends.
#pragma once

#include "mount/ShareFiles.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace sonorel {

class WriteBehind {
public:
  // files must outlive the object.
  explicit WriteBehind(ShareFiles &files) : m_files(files), m_thread([this] { send(); }) {}
  ~WriteBehind();
  WriteBehind(const WriteBehind &) = delete;
  WriteBehind &operator=(const WriteBehind &) = delete;

  // The size, or the error of a block of this file that was on its way.
  [[nodiscard]] int write(const char *block, size_t size, off_t offset, OpenFile *file);
  // Returns when nothing is on its way.
  void settle();

private:
  struct Block {
    std::vector<char> bytes;
    off_t offset = 0;
    OpenFile *file = nullptr;
  };

  void send();

  // One on its way and one that waits: more would only make everything else wait longer.
  static constexpr size_t kMost = 2;
  // A small block is mostly the whole file: the change of threads would take longer than it saves.
  static constexpr size_t kWorthIt = 512 * 1024;

  ShareFiles &m_files;
  std::mutex m_mutex; // guards what follows
  std::condition_variable m_changed;
  std::deque<Block> m_blocks; // the first is on its way
  std::vector<std::vector<char>> m_spare;
  OpenFile *m_broken = nullptr; // the file whose block failed last, until all is settled
  int m_error = 0;
  bool m_isEnding = false;
  std::thread m_thread;
};

} // namespace sonorel
