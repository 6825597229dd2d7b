// The user's session. Controller's thread, except log and the two prints, which any thread may call.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace sonorel {

struct LoginItem {
  QString path;
  bool hide = false;
};

class Desktop {
public:
  virtual ~Desktop() = default;
  [[nodiscard]] virtual std::vector<LoginItem> loginItems() = 0;
  // Replaces all; false when one could not be written.
  [[nodiscard]] virtual bool setLoginItems(const std::vector<LoginItem> &items) = 0;
  // What an earlier installation registered for the drop agent. What cannot be removed is logged.
  virtual void removeAgentLoginItems() = 0;
  [[nodiscard]] virtual qint64 spaceNumber() = 0;     // -1 when it cannot be told
  [[nodiscard]] virtual QString systemLanguage() = 0; // first language of the user's list, "de-AT"
  // A path of the system; false when it is missing or nothing can open it.
  [[nodiscard]] virtual bool openDocument(const QString &path) = 0;
  virtual void log(const QString &line) = 0;         // the system log
  virtual void printError(const QString &text) = 0;  // standard error, as it stands
  virtual void printOutput(const QString &text) = 0; // standard output, as it stands
};

} // namespace sonorel
