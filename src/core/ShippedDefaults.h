// The writable copies of the shipped property files: made when missing or damaged, and given the keys that a newer
// installation has added. What the user has changed stays. Where nothing is shipped nothing happens. Controller's
// thread, before the settings are read.
#pragma once

#include "core/ClientPaths.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <optional>

namespace sonorel {

class ShippedDefaults {
public:
  // All references must outlive the object.
  ShippedDefaults(FileSystem &files, PropertyLists &lists, Desktop &desktop, const ClientPaths &paths);

  // A failure is logged; the start goes on with what is there.
  void install();

private:
  void install(const QString &path, std::optional<quint32> mode);

  FileSystem &m_files;
  PropertyLists &m_lists;
  Desktop &m_desktop;
  const ClientPaths &m_paths;
};

} // namespace sonorel
