#include "core/state/MessageLog.h"

namespace sonorel {

namespace {

constexpr qsizetype kSeparatorDashes = 87;

} // namespace

MessageLog::MessageLog(std::function<void(const QString &)> show) : m_show(std::move(show)) {}

void MessageLog::clear() {
  {
    const std::lock_guard lock(m_GUILock);
    m_fileInvalid.clear();
    setViewText(QString());
  }
  handOver();
}

void MessageLog::startNew() {
  const std::lock_guard lock(m_GUILock);
  m_fileInvalid.clear();
}

void MessageLog::append(const QString &text) {
  const std::lock_guard lock(m_GUILock);
  m_fileInvalid += text;
}

void MessageLog::appendSeparator() {
  const std::lock_guard lock(m_GUILock);
  if (!m_fileInvalid.isEmpty()) {
    m_fileInvalid += QString(kSeparatorDashes, u'-') + u'\n';
  }
}

QString MessageLog::fileInvalid() const {
  const std::lock_guard lock(m_GUILock);
  return m_fileInvalid;
}

void MessageLog::show() {
  {
    const std::lock_guard lock(m_GUILock);
    setViewText(m_fileInvalid);
  }
  handOver();
}

void MessageLog::showOnly(const QString &text) {
  setViewText(text);
  handOver();
}

QString MessageLog::viewText() const {
  const std::lock_guard lock(m_threadLock);
  return m_viewText;
}

void MessageLog::setViewText(const QString &text) {
  const std::lock_guard lock(m_threadLock);
  m_viewText = text;
  m_toShow.append(text);
}

// One thread at a time hands over, without a lock held: two callers could otherwise overtake each other between
// their unlocking and their call.
void MessageLog::handOver() {
  for (bool first = true;; first = false) {
    QString text;
    {
      const std::lock_guard lock(m_threadLock);
      if (first && m_showing) {
        return;
      }
      m_showing = !m_toShow.isEmpty();
      if (!m_showing) {
        return;
      }
      text = m_toShow.takeFirst();
    }
    m_show(text);
  }
}

} // namespace sonorel
