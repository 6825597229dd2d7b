// What the connected product says about itself: its name and its network hardware address, read from the share's
// system folder right after a connection. Controller's thread; blocks on the share.
#pragma once

#include "core/ClientPaths.h"
#include "core/PropertyFile.h"
#include "core/state/Session.h"
#include "core/state/Settings.h"
#include "core/state/ShareLayout.h"

#include <optional>

namespace sonorel {

inline constexpr QStringView kUnknownName = u"0";

class DeviceName {
public:
  // All references but the paths must outlive the object.
  DeviceName(FileSystem &files, PropertyLists &lists, Desktop &desktop, Settings &settings, Session &session,
             ShareFolders folders, const ClientPaths &paths);

  // "Auralis 5", "Vaultbox 1", "Auracore 5", or kUnknownName; a share without the name file is "Vaultbox 1".
  // Stores the address file's bytes as "MACAdress" in both property files, and the hardware address in the session.
  // Passes failures on.
  [[nodiscard]] QString getDeviceName();

private:
  // nullopt: the file is there and could not be read.
  [[nodiscard]] std::optional<QString> readName();
  void storeHardwareAddress();

  FileSystem &m_files;
  Settings &m_settings;
  Session &m_session;
  const ShareFolders m_folders;
  PropertyFile m_machinePreferences;
};

} // namespace sonorel
