// The user's session. Controller's thread, except log, which any thread may call.
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
  [[nodiscard]] virtual bool setLoginItems(const std::vector<LoginItem> &items) = 0;
  virtual void removeAgentLoginItems() = 0;
  [[nodiscard]] virtual qint64 spaceNumber() = 0;     // -1 when it cannot be told
  [[nodiscard]] virtual QString systemLanguage() = 0; // first language of the user's list, "de-AT"
  [[nodiscard]] virtual bool openDocument(const QString &path) = 0;
  virtual void log(const QString &line) = 0;         // the system log
  virtual void printError(const QString &text) = 0;  // standard error, as it stands
  virtual void printOutput(const QString &text) = 0; // standard output, as it stands; any thread
};

} // namespace sonorel
