// The questions that people see and have not answered yet, with who waits for each answer. Every question gets one:
// the button, or -1 once the program ends. One that is withdrawn gets none. Controller's thread, except newSerial.
#pragma once

#include "platform/UserInterface.h"

#include <atomic>
#include <functional>
#include <map>

namespace sonorel {

class OpenQuestions {
public:
  using Answered = std::function<void(int button)>;

  // userInterface must outlive the object.
  explicit OpenQuestions(UserInterface &userInterface) : m_userInterface(userInterface) {}

  // Any thread; from 1, each once.
  [[nodiscard]] quint32 newSerial() { return m_nextSerial++; }

  void open(const Question &question, const Answered &answered);
  void withdraw(quint32 serial);
  // A number that no question has, or a button that it has not, is ignored.
  void answer(quint32 serial, int button);
  // From now on nothing is asked any more; what is open stays open.
  void refuseFurtherOnes() { m_isRefusing = true; }
  void closeAll();

private:
  struct Open {
    int buttons = 0;
    Answered answered;
  };

  UserInterface &m_userInterface;
  std::atomic<quint32> m_nextSerial{1};
  std::map<quint32, Open> m_open;
  bool m_isRefusing = false;
};

} // namespace sonorel
