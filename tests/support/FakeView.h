// The window as a list of calls and the values that stand in it now. Any thread.
#pragma once

#include "core/state/View.h"

#include <QList>

#include <deque>
#include <mutex>
#include <optional>

namespace sonorel::test {

class FakeView : public View {
public:
  struct Asked : Question {
    std::function<void(int)> answered;
  };

  QStringList calls; // "setProgressBar 50", "setDockIcon Connect", "fillMessageLog text", "alert message|text"
  QString lastLog;
  double progress = 0;
  QString icon;
  bool pulsing = false;
  std::optional<Tab> tab;
  bool cancelEnabled = false;
  bool cancelHighlighted = false;
  bool languageEnabled = true;
  int transfersCompleted = 0;
  std::deque<Asked> asked;                  // not yet answered
  std::optional<int> autoAnswer;            // answers at once
  std::function<void()> onTransferComplete; // once

  // Answers the oldest question.
  void answer(int button);
  [[nodiscard]] QStringList callsStartingWith(const QString &start) const;

  void fillMessageLog(std::function<QString()> text) override;
  void windowFrontCentre() override;
  void setEnableDisableCancelBtn(bool enabled) override;
  void setHighlightCancelBtn(bool highlighted) override;
  void setProgressBar(double percent) override;
  void setDockIcon(const QString &iconImageType) override;
  void stopPulse() override;
  void selectTab(Tab wanted) override;
  void setLanguageEnabled(bool enabled) override;
  void attention() override;
  void alert(const QString &message, const QString &informativeText) override;
  quint32 ask(Question question, std::function<void(int)> answered) override;
  void withdraw(quint32 question) override;
  void transferStateChanged() override;
  void transferComplete() override;

private:
  mutable std::mutex m_mutex; // guards everything
  quint32 m_questions = 0;
};

} // namespace sonorel::test
