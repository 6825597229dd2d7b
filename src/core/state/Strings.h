// The strings table of the current language: an immutable snapshot that is swapped by reload. Readers on any
// thread see one whole table. A key that is missing shows itself.
#pragma once

#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <QHash>
#include <QString>

#include <memory>
#include <mutex>

namespace sonorel {

class Strings {
public:
  // folder is `LFPath`, ending in "/"; both references must outlive the object.
  Strings(FileSystem &files, PropertyLists &lists, QString folder);

  void setLanguageFile(const QString &languageFile); // takes effect with the next reload
  [[nodiscard]] QString languageFile() const;        // `languageFile` and `currentLanguage`
  // Reads `stringsFile` again unless its size, time and identity are those of the last read. A missing or damaged
  // file gives an empty table.
  void reload();
  [[nodiscard]] QString text(const QString &key) const;
  [[nodiscard]] bool contains(const QString &key) const;
  // The text of a key in another language's file; empty when there is none.
  [[nodiscard]] QString textIn(const QString &languageFile, const QString &key) const;

private:
  using Table = QHash<QString, QString>;
  [[nodiscard]] Table read(const QString &languageFile) const;

  FileSystem &m_files;
  PropertyLists &m_lists;
  const QString m_folder;
  mutable std::mutex m_mutex; // guards everything below
  QString m_languageFile;
  QString m_loadedFile;
  std::optional<FileAttributes> m_loadedAttributes;
  std::shared_ptr<const Table> m_table; // immutable; another takes its place as a whole
};

// Every "#" replaced by the product's name.
[[nodiscard]] QString withProductName(const QString &text, const QString &deviceName);
// Every "*" replaced by the name in double quotation marks; the name itself is not searched.
[[nodiscard]] QString withFileName(const QString &text, const QString &name);

} // namespace sonorel
