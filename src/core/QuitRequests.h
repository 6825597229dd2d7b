// How the program is asked to end. The user asks as often as he likes and may be refused each time; the system
// (a signal, the end of the session) is refused once at most: its next request ends the transfer and the program.
// Requests come from any thread and return at once; everything else happens on the controller's thread.
// Where the system's come from: app/EndRequests.h.
#pragma once

#include "core/Interruption.h"
#include "platform/Loop.h"

#include <atomic>
#include <exception>
#include <functional>

namespace sonorel {

class QuitRequests {
public:
  struct Hooks {
    std::function<bool()> applicationShouldTerminate; // false: refused, the program keeps running
    // As the Cancel button; in a hurry nothing waits for other clients any more.
    std::function<void(bool hurry)> cancelTransfer;
    // Ends the running copy and waits for the worker; a favourites rewrite is finished first.
    std::function<void()> joinTransfer;
    std::function<void()> terminate;                    // leaves what is not left yet; the program ends with status 0
    std::function<void(const std::exception &)> failed; // one of the above; the end goes on
  };

  // Both references must outlive the object, and the loop must not run any more when it is destroyed.
  QuitRequests(Loop &loop, Interruption &interruption, Hooks hooks);

  void byUser();
  void bySystem();
  // From the program itself: an end that nobody refuses. The running transfer hands in what it has placed.
  void unconditionally();

  // Any thread: from a request until it is refused; once one is granted, for good.
  [[nodiscard]] bool isAsked() const { return m_asked > 0; }
  // Controller's thread: the program is ending, nothing new may begin.
  [[nodiscard]] bool isTerminated() const { return m_terminated; }

private:
  void quit();
  void quitByForce(bool hurry);
  [[nodiscard]] bool agrees();
  void end();
  void attempt(const std::function<void()> &step);

  Loop &m_loop;
  Interruption &m_interruption;
  Hooks m_hooks;
  std::atomic<int> m_systemRequests{0};
  std::atomic<int> m_asked{0}; // requests that were not refused
  bool m_terminated = false;   // controller's thread
};

} // namespace sonorel
