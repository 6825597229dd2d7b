#include "platform/linux/LinuxLoop.h"

#include <algorithm>
#include <utility>

namespace sonorel {

namespace {

using SteadyClock = std::chrono::steady_clock;

} // namespace

LinuxLoop::LinuxLoop(std::function<void(const std::exception &)> onFailure) : m_onFailure(std::move(onFailure)) {}

void LinuxLoop::run() {
  while (const auto operation = waitForNext()) {
    runOne(*operation);
  }
  // What was dropped may own objects whose end posts again: it ends outside of the lock.
  std::deque<Posted> queue;
  Timers timers;
  const std::lock_guard lock(m_mutex);
  queue.swap(m_queue);
  timers.swap(m_timers);
}

void LinuxLoop::stop() {
  const std::lock_guard lock(m_mutex);
  m_stopped = true;
  m_changed.notify_all();
}

void LinuxLoop::post(Operation operation) {
  const std::lock_guard lock(m_mutex);
  if (!m_stopped) {
    m_queue.push_back({SteadyClock::now(), std::move(operation)});
    m_changed.notify_all();
  }
}

Loop::TimerId LinuxLoop::after(std::chrono::milliseconds delay, Operation operation) {
  return add(delay, std::chrono::milliseconds(0), std::move(operation));
}

Loop::TimerId LinuxLoop::every(std::chrono::milliseconds interval, Operation operation) {
  return add(interval, std::max(interval, std::chrono::milliseconds(1)), std::move(operation));
}

void LinuxLoop::cancel(TimerId timer) {
  Timers::node_type ended; // its operation ends outside of the lock
  const std::lock_guard lock(m_mutex);
  ended = m_timers.extract(timer);
}

Loop::TimerId LinuxLoop::add(std::chrono::milliseconds delay, std::chrono::milliseconds interval,
                             Operation operation) {
  const std::lock_guard lock(m_mutex);
  const TimerId id = m_nextTimer++;
  if (!m_stopped) {
    m_timers.emplace(id, Timer{SteadyClock::now() + delay, interval, std::move(operation)});
    m_changed.notify_all();
  }
  return id;
}

LinuxLoop::Timers::iterator LinuxLoop::earliest() {
  // Timers are few: the map is ordered by number, so that equal times run in the order they were set.
  return std::min_element(m_timers.begin(), m_timers.end(),
                          [](const auto &a, const auto &b) { return a.second.due < b.second.due; });
}

Loop::Operation LinuxLoop::takeTimer(Timers::iterator timer, Time now) {
  if (timer->second.interval.count() == 0) {
    Operation operation = std::move(timer->second.operation);
    m_timers.erase(timer);
    return operation;
  }
  const auto missed = std::max<Time::rep>((now - timer->second.due) / timer->second.interval, 0);
  timer->second.due += (missed + 1) * timer->second.interval;
  return timer->second.operation;
}

std::optional<Loop::Operation> LinuxLoop::waitForNext() {
  std::unique_lock lock(m_mutex);
  while (!m_stopped) {
    const Time now = SteadyClock::now();
    const auto timer = earliest();
    const bool timerDue = timer != m_timers.end() && timer->second.due <= now;
    if (timerDue && (m_queue.empty() || timer->second.due <= m_queue.front().arrived)) {
      return takeTimer(timer, now);
    }
    if (!m_queue.empty()) {
      Operation operation = std::move(m_queue.front().operation);
      m_queue.pop_front();
      return operation;
    }
    if (timer == m_timers.end()) {
      m_changed.wait(lock);
    } else {
      m_changed.wait_until(lock, Time(timer->second.due));
    }
  }
  return std::nullopt;
}

void LinuxLoop::runOne(const Operation &operation) const {
  try {
    operation();
  } catch (const std::exception &e) {
    if (m_onFailure) {
      m_onFailure(e);
    }
  }
}

} // namespace sonorel
