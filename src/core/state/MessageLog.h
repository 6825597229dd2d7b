// The message log: `fileInvalid`, the text of the running transfer, and the text that the view shows. Locked by
// `GUILock` (fileInvalid) and `threadLock` (what the view shows), always in that order, never while waiting. A line
// costs what the line is long, however long the log has become. Any thread.
#pragma once

#include <QString>

#include <functional>
#include <mutex>

namespace sonorel {

class MessageLog {
public:
  // changed tells the window that viewText() is another (`fillMessageLog:`); it must not block and is called without
  // the locks held.
  explicit MessageLog(std::function<void()> changed);

  // fileInvalid and the view.
  void clear();
  // fileInvalid only; the view stays.
  void startNew();
  void append(const QString &text);
  // The line of 87 dashes, only when fileInvalid is not empty.
  void appendSeparator();
  [[nodiscard]] QString fileInvalid() const;
  // Appends a line and shows it, in one step; its line end is seen only with what comes behind it.
  void showLine(const QString &line);
  // The view shows fileInvalid as it is now; what is appended later is not seen.
  void show();
  // The view alone shows this text.
  void showOnly(const QString &text);
  // A copy of the whole.
  [[nodiscard]] QString viewText() const;

private:
  [[nodiscard]] QString shownText() const; // both locks held

  std::function<void()> m_changed;
  mutable std::mutex m_GUILock; // guards m_fileInvalid
  QString m_fileInvalid;
  mutable std::mutex m_threadLock; // guards everything below
  qsizetype m_shownLength = 0;     // the view shows so much of fileInvalid; negative: it shows m_viewText
  QString m_viewText;
};

} // namespace sonorel
