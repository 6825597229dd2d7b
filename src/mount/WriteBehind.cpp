#include "mount/WriteBehind.h"

#include <utility>

namespace sonorel {

WriteBehind::~WriteBehind() {
  {
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
  }
  m_changed.notify_all();
  m_thread.join();
}

int WriteBehind::write(const char *block, size_t size, off_t offset, OpenFile *file) {
  Block next{{}, offset, file};
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return m_blocks.size() < kMost; });
  if (m_broken == file) {
    return m_error;
  }
  if (size < kWorthIt && m_blocks.empty()) {
    return m_files.writeBehind(*file, block, size, offset);
  }
  if (!m_spare.empty()) {
    next.bytes = std::move(m_spare.back());
    m_spare.pop_back();
  }
  lock.unlock();
  next.bytes.assign(block, block + size);
  lock.lock();
  m_blocks.push_back(std::move(next));
  lock.unlock();
  m_changed.notify_all();
  return static_cast<int>(size);
}

void WriteBehind::settle() {
  std::unique_lock lock(m_mutex);
  m_changed.wait(lock, [this] { return m_blocks.empty(); });
  m_broken = nullptr;
}

void WriteBehind::send() {
  std::unique_lock lock(m_mutex);
  for (;;) {
    m_changed.wait(lock, [this] { return m_isEnding || !m_blocks.empty(); });
    if (m_blocks.empty()) {
      return;
    }
    const Block &block = m_blocks.front(); // stays where it is while others are added behind it
    lock.unlock();
    const int result = m_files.writeBehind(*block.file, block.bytes.data(), block.bytes.size(), block.offset);
    lock.lock();
    if (result < 0) {
      m_broken = block.file;
      m_error = result;
    }
    m_spare.push_back(std::move(m_blocks.front().bytes));
    m_blocks.pop_front();
    m_changed.notify_all();
  }
}

} // namespace sonorel
