#include "support/FakeLoop.h"

namespace sonorel::test {

bool FakeLoop::runOne() {
  Operation operation;
  {
    const std::lock_guard guard(m_mutex);
    if (m_queue.empty()) {
      return false;
    }
    operation = std::move(m_queue.front());
    m_queue.pop_front();
  }
  operation();
  return true;
}

void FakeLoop::runPosted() {
  while (runOne()) {
  }
}

void FakeLoop::advance(std::chrono::milliseconds duration) {
  const std::chrono::milliseconds end = now() + duration;
  runPosted();
  while (const Operation operation = takeDue(end)) {
    operation();
    runPosted();
  }
  const std::lock_guard guard(m_mutex);
  m_now = end;
}

Loop::Operation FakeLoop::takeDue(std::chrono::milliseconds limit) {
  const std::lock_guard guard(m_mutex);
  auto earliest = m_timers.end();
  for (auto timer = m_timers.begin(); timer != m_timers.end(); ++timer) {
    if (earliest == m_timers.end() || timer->second.due < earliest->second.due) {
      earliest = timer;
    }
  }
  if (earliest == m_timers.end() || earliest->second.due > limit) {
    return {};
  }
  m_now = std::max(m_now, earliest->second.due);
  Operation operation = earliest->second.operation;
  if (earliest->second.interval.count() > 0) {
    earliest->second.due += earliest->second.interval;
  } else {
    m_timers.erase(earliest);
  }
  return operation;
}

int FakeLoop::timerCount() const {
  const std::lock_guard guard(m_mutex);
  return static_cast<int>(m_timers.size());
}

int FakeLoop::postedCount() const {
  const std::lock_guard guard(m_mutex);
  return static_cast<int>(m_queue.size());
}

std::chrono::milliseconds FakeLoop::now() const {
  const std::lock_guard guard(m_mutex);
  return m_now;
}

void FakeLoop::post(Operation operation) {
  const std::lock_guard guard(m_mutex);
  m_queue.push_back(std::move(operation));
}

Loop::TimerId FakeLoop::after(std::chrono::milliseconds delay, Operation operation) {
  return add(delay, std::chrono::milliseconds{0}, std::move(operation));
}

Loop::TimerId FakeLoop::every(std::chrono::milliseconds interval, Operation operation) {
  return add(interval, std::max(interval, std::chrono::milliseconds{1}), std::move(operation));
}

Loop::TimerId FakeLoop::add(std::chrono::milliseconds delay, std::chrono::milliseconds interval,
                            Operation operation) {
  const std::lock_guard guard(m_mutex);
  m_timers.emplace(m_nextTimer, Timer{m_now + delay, interval, std::move(operation)});
  return m_nextTimer++;
}

void FakeLoop::cancel(TimerId timer) {
  const std::lock_guard guard(m_mutex);
  m_timers.erase(timer);
}

} // namespace sonorel::test
