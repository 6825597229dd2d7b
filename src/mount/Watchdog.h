// A thread of the mount program beside the one that serves. libsmbclient has no way to be interrupted, so this one
// sees to it that no operation lasts longer than its limit: it cuts the connection, and goes on cutting until the
// operation has ended. It also hears the signals that end the program and notices that somebody else has unmounted
// the share.
#pragma once

#include "platform/linux/FileDescriptor.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>

namespace sonorel {

class Watchdog {
public:
  // Blocks the ending signals in the calling thread and all that it starts later. Until mounted() a signal ends the
  // process at once.
  Watchdog();
  ~Watchdog();
  Watchdog(const Watchdog &) = delete;
  Watchdog &operator=(const Watchdog &) = delete;

  // An operation on the server, from construction to destruction; one at a time.
  class Operation {
  public:
    Operation(Watchdog &watchdog, std::chrono::milliseconds limit);
    ~Operation();
    Operation(const Operation &) = delete;
    Operation &operator=(const Operation &) = delete;
    // Its time had passed, or the program is ending.
    [[nodiscard]] bool wasCut() const;

  private:
    Watchdog &m_watchdog;
  };

  // Runs mount while no signal can interfere; false, and nothing was run, when one came before. From its return on a
  // signal, or the disappearance of the point from the mount table, calls end once, on the watchdog's thread.
  bool mounted(const std::string &point, const std::function<bool()> &mount, std::function<void()> end);
  [[nodiscard]] bool isEnding() const { return m_isEnding; }

private:
  void watch();
  void hearSignal();
  void finish();
  void arm(std::chrono::milliseconds limit) const;

  FileDescriptor m_timer;
  FileDescriptor m_signals;
  FileDescriptor m_stop;
  FileDescriptor m_mountTable;
  std::atomic<bool> m_wasCut = false;
  std::atomic<bool> m_isEnding = false;
  std::mutex m_mutex; // guards what follows
  std::string m_point;
  std::function<void()> m_end;
  std::thread m_thread;
};

} // namespace sonorel
