// Drops received and not yet finished. Counted up where a drop arrives, before anybody has looked at it, and down on
// every way out. Any thread.
#pragma once

#include <QtGlobal>

#include <atomic>

namespace sonorel {

class DropCounter {
public:
  void received() { m_pending.fetch_add(1); }
  void finished(quint32 drops) {
    quint32 pending = m_pending.load();
    while (!m_pending.compare_exchange_weak(pending, pending > drops ? pending - drops : 0)) {
    }
  }
  [[nodiscard]] quint32 pending() const { return m_pending.load(); }

private:
  std::atomic<quint32> m_pending{0};
};

} // namespace sonorel
