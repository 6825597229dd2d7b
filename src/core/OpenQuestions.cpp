#include "core/OpenQuestions.h"

#include <utility>

namespace sonorel {

namespace {

constexpr int kNoAnswer = -1;

} // namespace

void OpenQuestions::open(const Question &question, const Answered &answered) {
  if (m_isRefusing) {
    answered(kNoAnswer);
    return;
  }
  m_open[question.serial] = {static_cast<int>(question.buttons.size()), answered};
  m_userInterface.open(question);
}

void OpenQuestions::withdraw(quint32 serial) {
  if (m_open.erase(serial) > 0) {
    m_userInterface.close(serial);
  }
}

void OpenQuestions::answer(quint32 serial, int button) {
  const auto found = m_open.find(serial);
  if (found == m_open.end() || button < 0 || button >= found->second.buttons) {
    return;
  }
  const Open question = std::move(found->second);
  m_open.erase(found);
  m_userInterface.close(serial);
  question.answered(button);
}

void OpenQuestions::closeAll() {
  for (const auto &[serial, question] : std::exchange(m_open, {})) {
    m_userInterface.close(serial);
    question.answered(kNoAnswer);
  }
}

} // namespace sonorel
