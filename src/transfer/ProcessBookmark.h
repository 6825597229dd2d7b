// Turns a browser's bookmark file (".webloc") into a ".url" file, by the converter that is shipped with the
// application. Worker thread; blocks while the converter runs.
#pragma once

#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Scripts.h"

#include <QString>

#include <optional>
#include <stop_token>

namespace sonorel {

// The script by which the first platform runs the converter. A platform with scripts runs this text; the others start
// the converter with the path as its argument, so that no shell ever reads it.
[[nodiscard]] QString bookmarkScript(const QString &converter, const QString &path);

class ProcessBookmark {
public:
  // All references must outlive the object.
  ProcessBookmark(FileSystem &files, Scripts &scripts, Desktop &desktop)
      : m_files(files), m_scripts(scripts), m_desktop(desktop) {}

  // The ".url" file of a ".webloc": beside it, or in a temporary folder when it cannot be made there or when the name
  // is taken by a file of the user's. The caller removes it, and then calls clear. nullopt, and a log line, when
  // there is no address in the file. stop ends the converter.
  [[nodiscard]] std::optional<QString> processBookmark(const QString &path, const std::stop_token &stop = {});
  // Nothing temporary stays.
  void clear();

private:
  [[nodiscard]] std::optional<QString> convertBeside(const QString &path);
  [[nodiscard]] std::optional<QString> convertInTemporaryFolder(const QString &path);
  void removeTemporaryFolder();
  // The file that the converter makes; the reason is kept when it makes none.
  [[nodiscard]] bool convert(const QString &path, const QString &made);

  FileSystem &m_files;
  Scripts &m_scripts;
  Desktop &m_desktop;
  bool m_temporaryFolderUsed = false;
  std::stop_token m_stop;          // of the running conversion
  std::optional<QString> m_reason; // of the last conversion that failed; nullopt: it had no result
};

} // namespace sonorel
