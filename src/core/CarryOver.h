// Settings that an earlier installation left: found by its receipt, handed over through the machine-wide preferences.
// Runs once at the start of a new installation, after the client property file has been read. Controller's thread.
#pragma once

#include "core/ClientPaths.h"
#include "core/PropertyFile.h"
#include "core/state/Settings.h"

namespace sonorel {

class CarryOver {
public:
  // All references must outlive the object.
  CarryOver(FileSystem &files, PropertyLists &lists, Desktop &desktop, Settings &settings, const ClientPaths &paths);

  // Looks for receipts on every volume; saves the settings of an installation that was in use and deletes the old
  // bundle.
  void fromReceipts();
  // Takes over what the machine-wide preferences hold and begins that folder anew. Passes failures on.
  void fromMachinePreferences();

private:
  // Empty when there is no receipt, or none that can be used.
  [[nodiscard]] QString earlierBundle(const QString &receipt);
  void saveForNewInstallation();
  void removeBundle(const QString &path);
  void takeOver(const QVariantMap &carried);
  void createProductList(const QVariantMap &carried);

  FileSystem &m_files;
  PropertyLists &m_lists;
  Desktop &m_desktop;
  Settings &m_settings;
  const ClientPaths &m_paths;
  PropertyFile m_machinePreferences;
  PropertyFile m_productList;
};

} // namespace sonorel
