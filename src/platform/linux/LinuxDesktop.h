// The user's session on Linux: autostart entries, the desktop's number, the system's language, documents, the log on
// standard error (which the journal keeps when the session is its own). Controller's thread, except log and the
// two prints, which any thread may call.
#pragma once

#include "platform/Desktop.h"
#include "platform/linux/ChildProcess.h"
#include "platform/linux/DesktopNumber.h"
#include "platform/linux/HostPath.h"

namespace sonorel {

class LinuxDesktop final : public Desktop {
public:
  struct Places {
    QString configHome; // $XDG_CONFIG_HOME or ~/.config
    QString client;     // host path of the program that a login item for the client starts
    HostPath hostPath;
  };

  explicit LinuxDesktop(Places places);

  [[nodiscard]] std::vector<LoginItem> loginItems() override;
  // One autostart entry for each item; entries that are not ours stay.
  [[nodiscard]] bool setLoginItems(const std::vector<LoginItem> &items) override;
  void removeAgentLoginItems() override;
  // Entries of an earlier installation of the client start this one from now on. One that the user removed stays
  // away.
  void renewLoginItems();
  [[nodiscard]] qint64 spaceNumber() override;
  [[nodiscard]] QString systemLanguage() override;
  [[nodiscard]] bool openDocument(const QString &path) override;
  void log(const QString &line) override;
  void printError(const QString &text) override;
  void printOutput(const QString &text) override;

private:
  [[nodiscard]] QString autostartFolder() const;
  [[nodiscard]] QString commandOf(const LoginItem &item) const;

  Places m_places;
  DesktopNumber m_desktopNumber;
  DetachedChildren m_openers;
};

} // namespace sonorel
