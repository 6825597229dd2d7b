// The message log: `fileInvalid`, the text of the running transfer, and the text last handed to the view. Locked by
// `GUILock` (fileInvalid) and `threadLock` (the copy for the view), always in that order, never while waiting.
// Any thread.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>

namespace sonorel {

class MessageLog {
public:
  // show hands a text to the window (`fillMessageLog:`); it must not block and is called without the locks held,
  // texts in the order in which they were shown.
  explicit MessageLog(std::function<void(const QString &)> show);

  // fileInvalid and the view.
  void clear();
  // fileInvalid only; the view stays.
  void startNew();
  void append(const QString &text);
  // The line of 87 dashes, only when fileInvalid is not empty.
  void appendSeparator();
  [[nodiscard]] QString fileInvalid() const;
  // Hands fileInvalid as it is now to the view.
  void show();
  // The view alone shows this text.
  void showOnly(const QString &text);
  [[nodiscard]] QString viewText() const;

private:
  void setViewText(const QString &text);
  void handOver();

  std::function<void(const QString &)> m_show;
  mutable std::mutex m_GUILock; // guards m_fileInvalid
  QString m_fileInvalid;
  mutable std::mutex m_threadLock; // guards everything below
  QString m_viewText;
  QStringList m_toShow;   // set and not yet handed over
  bool m_showing = false; // somebody hands over, in order; the others leave it to him
};

} // namespace sonorel
