#include "core/state/MessageLog.h"

#include <utility>

namespace sonorel {

namespace {

constexpr qsizetype kSeparatorDashes = 87;
constexpr qsizetype kOwnText = -1;

} // namespace

MessageLog::MessageLog(std::function<void()> changed) : m_changed(std::move(changed)) {}

void MessageLog::clear() {
  {
    const std::lock_guard guard(m_GUILock);
    const std::lock_guard lock(m_threadLock);
    m_fileInvalid.clear();
    m_viewText.clear();
    m_shownLength = 0;
  }
  m_changed();
}

void MessageLog::startNew() {
  const std::lock_guard guard(m_GUILock);
  const std::lock_guard lock(m_threadLock);
  m_viewText = shownText();
  m_shownLength = kOwnText;
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

void MessageLog::showLine(const QString &line) {
  {
    const std::lock_guard guard(m_GUILock);
    const std::lock_guard lock(m_threadLock);
    m_fileInvalid += line;
    m_shownLength = m_fileInvalid.size();
    m_viewText.clear();
    m_fileInvalid += u'\n';
  }
  m_changed();
}

// Only the length is kept: a copy would have to be made anew by the next append.
void MessageLog::show() {
  {
    const std::lock_guard guard(m_GUILock);
    const std::lock_guard lock(m_threadLock);
    m_shownLength = m_fileInvalid.size();
    m_viewText.clear();
  }
  m_changed();
}

void MessageLog::showOnly(const QString &text) {
  {
    const std::lock_guard lock(m_threadLock);
    m_shownLength = kOwnText;
    m_viewText = text;
  }
  m_changed();
}

QString MessageLog::viewText() const {
  const std::lock_guard guard(m_GUILock);
  const std::lock_guard lock(m_threadLock);
  return shownText();
}

QString MessageLog::shownText() const {
  return m_shownLength < 0 ? m_viewText : m_fileInvalid.first(m_shownLength);
}

} // namespace sonorel
