// Ejecting and bookmark conversion by the system's tools. May block; any thread.
#pragma once

#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/Processes.h"
#include "platform/Scripts.h"

#include <functional>

namespace sonorel {

class LinuxScripts final : public Scripts {
public:
  // The references must outlive the object; stop gives the token that ends an ejection; converter is the
  // system's path of the bookmark converter.
  LinuxScripts(FileSystem &files, Processes &processes, Clock &clock, std::function<std::stop_token()> stop,
               QString converter);

  void ejectDisk(const QString &name) override;
  [[nodiscard]] std::optional<QString> convertBookmark(const QString &path, std::stop_token stop) override;

private:
  FileSystem &m_files;
  Processes &m_processes;
  Clock &m_clock;
  std::function<std::stop_token()> m_stop;
  QString m_converter;
};

} // namespace sonorel
