// Keeps everything that was published. Any thread.
#pragma once

#include "platform/UserInterface.h"

#include <QList>

#include <mutex>
#include <optional>

namespace sonorel::test {

class FakeUserInterface : public UserInterface {
public:
  QList<UserInterfaceState> states;
  QList<Question> questions; // open ones, the oldest first
  QList<quint32> closed;
  int raises = 0;
  int attentions = 0;
  int transfersCompleted = 0;
  std::optional<int> quitStatus;

  [[nodiscard]] UserInterfaceState last() const {
    const std::lock_guard guard(m_mutex);
    return states.isEmpty() ? UserInterfaceState() : states.last();
  }

  void publish(const UserInterfaceState &state) override {
    const std::lock_guard guard(m_mutex);
    states.append(state);
  }
  void open(const Question &question) override {
    const std::lock_guard guard(m_mutex);
    questions.append(question);
  }
  void close(quint32 serial) override {
    const std::lock_guard guard(m_mutex);
    closed.append(serial);
    questions.removeIf([serial](const Question &question) { return question.serial == serial; });
  }
  void transferComplete() override {
    const std::lock_guard guard(m_mutex);
    ++transfersCompleted;
  }
  void raise() override {
    const std::lock_guard guard(m_mutex);
    ++raises;
  }
  void attention() override {
    const std::lock_guard guard(m_mutex);
    ++attentions;
  }
  void quit(int status) override {
    const std::lock_guard guard(m_mutex);
    quitStatus = status;
  }

private:
  mutable std::mutex m_mutex; // guards everything above
};

} // namespace sonorel::test
