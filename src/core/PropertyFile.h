// Property-list files that are read whole, changed in memory and written back whole. A damaged file is set aside with
// a line in the log and counts as missing. Controller's thread.
#pragma once

#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <QVariantMap>

#include <optional>

namespace sonorel {

class PropertyFile {
public:
  // All references must outlive the object. asidePath: what a damaged file is called instead before it is set aside,
  // where its own folder is no place to keep anything; empty: its own path.
  PropertyFile(FileSystem &files, PropertyLists &lists, Desktop &desktop, QString path, QString asidePath = {});

  [[nodiscard]] const QString &path() const { return m_path; }
  [[nodiscard]] bool exists() const { return m_files.presence(m_path) == Presence::Present; }
  // nullopt when there is no file. Throws Failure when the file cannot be read.
  [[nodiscard]] std::optional<QVariantMap> read();
  // Beside and by renaming. The mode is set when given, else the old file's is kept. Throws Failure.
  void write(const QVariantMap &values, std::optional<quint32> mode = {});

private:
  void setAside(const QString &reason);

  FileSystem &m_files;
  PropertyLists &m_lists;
  Desktop &m_desktop;
  QString m_path;
  QString m_asidePath;
};

} // namespace sonorel
