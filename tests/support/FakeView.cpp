#include "support/FakeView.h"

#include "core/state/DockImages.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

QString flag(bool value) {
  return value ? u"YES"_s : u"NO"_s;
}

} // namespace

void FakeView::answer(int button) {
  Asked oldest;
  {
    const std::lock_guard guard(m_mutex);
    oldest = asked.front();
    asked.pop_front();
  }
  oldest.answered(button);
}

QStringList FakeView::callsStartingWith(const QString &start) const {
  const std::lock_guard guard(m_mutex);
  QStringList found;
  for (const QString &call : calls) {
    if (call.startsWith(start)) {
      found.append(call);
    }
  }
  return found;
}

void FakeView::fillMessageLog(std::function<QString()> text) {
  const QString filled = text();
  const std::lock_guard guard(m_mutex);
  calls.append(u"fillMessageLog "_s + filled);
  lastLog = filled;
}

void FakeView::windowFrontCentre() {
  const std::lock_guard guard(m_mutex);
  calls.append(u"windowFrontCentre"_s);
}

void FakeView::setEnableDisableCancelBtn(bool enabled) {
  const std::lock_guard guard(m_mutex);
  calls.append(u"setEnableDisableCancelBtn "_s + flag(enabled));
  cancelEnabled = enabled;
}

void FakeView::setHighlightCancelBtn(bool highlighted) {
  const std::lock_guard guard(m_mutex);
  calls.append(u"setHighlightCancelBtn "_s + flag(highlighted));
  cancelHighlighted = highlighted;
}

void FakeView::setProgressBar(double percent) {
  const std::lock_guard guard(m_mutex);
  calls.append(u"setProgressBar "_s + QString::number(percent));
  progress = percent;
}

void FakeView::setDockIcon(const QString &iconImageType) {
  const std::lock_guard guard(m_mutex);
  calls.append(u"setDockIcon "_s + iconImageType);
  icon = iconImageType;
  pulsing = iconImageType == kTransferIcon;
}

void FakeView::stopPulse() {
  const std::lock_guard guard(m_mutex);
  calls.append(u"stopPulse"_s);
  pulsing = false;
}

void FakeView::selectTab(Tab wanted) {
  const std::lock_guard guard(m_mutex);
  calls.append(u"selectTab "_s + QString::number(static_cast<int>(wanted)));
  tab = wanted;
}

void FakeView::setLanguageEnabled(bool enabled) {
  const std::lock_guard guard(m_mutex);
  calls.append(u"setLanguageEnabled "_s + flag(enabled));
  languageEnabled = enabled;
}

void FakeView::attention() {
  const std::lock_guard guard(m_mutex);
  calls.append(u"attention"_s);
}

void FakeView::alert(const QString &message, const QString &informativeText) {
  const std::lock_guard guard(m_mutex);
  calls.append(u"alert "_s + message + u'|' + informativeText);
}

quint32 FakeView::ask(Question question, std::function<void(int)> answered) {
  std::optional<int> answer;
  {
    const std::lock_guard guard(m_mutex);
    calls.append(u"ask "_s + question.message + u'|' + question.informativeText);
    answer = autoAnswer;
    question.serial = ++m_questions;
    if (!answer) {
      asked.push_back({question, answered});
    }
  }
  if (answer) {
    answered(*answer);
  }
  return question.serial;
}

void FakeView::withdraw(quint32 question) {
  const std::lock_guard guard(m_mutex);
  std::erase_if(asked, [question](const Asked &open) { return open.serial == question; });
}

void FakeView::transferStateChanged() {
  const std::lock_guard guard(m_mutex);
  calls.append(u"transferStateChanged"_s);
}

void FakeView::transferComplete() {
  {
    const std::lock_guard guard(m_mutex);
    calls.append(u"transferComplete"_s);
    ++transfersCompleted;
  }
  if (const auto once = std::exchange(onTransferComplete, nullptr)) {
    once();
  }
}

} // namespace sonorel::test
