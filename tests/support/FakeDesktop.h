// A user's session as plain values. log is safe from any thread.
#pragma once

#include "platform/Desktop.h"

#include <mutex>

namespace sonorel::test {

class FakeDesktop : public Desktop {
public:
  QStringList lines;   // the system log
  QStringList errors;  // standard error
  QStringList printed; // standard output
  std::vector<LoginItem> items;
  bool itemsCanBeSet = true;
  int agentRemovals = 0;
  qint64 space = 1;
  QString language = QStringLiteral("en-US");
  QStringList opened;
  bool opens = true;

  // True when a line of the log holds the text.
  [[nodiscard]] bool logged(const QString &text) const {
    const std::lock_guard guard(m_mutex);
    for (const QString &line : lines) {
      if (line.contains(text)) {
        return true;
      }
    }
    return false;
  }

  std::vector<LoginItem> loginItems() override { return items; }
  bool setLoginItems(const std::vector<LoginItem> &wanted) override {
    if (itemsCanBeSet) {
      items = wanted;
    }
    return itemsCanBeSet;
  }
  void removeAgentLoginItems() override { ++agentRemovals; }
  qint64 spaceNumber() override { return space; }
  QString systemLanguage() override { return language; }
  bool openDocument(const QString &path) override {
    opened.append(path);
    return opens;
  }
  void log(const QString &line) override {
    const std::lock_guard guard(m_mutex);
    lines.append(line);
  }
  void printError(const QString &text) override { errors.append(text); }
  void printOutput(const QString &text) override { printed.append(text); }

private:
  mutable std::mutex m_mutex; // guards lines
};

} // namespace sonorel::test
