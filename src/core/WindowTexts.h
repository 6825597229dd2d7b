// What the user reads: choosing the language, relabelling the window, the help document, and the alert of two parts.
// Controller's thread.
#pragma once

#include "core/ClientPaths.h"
#include "core/InterfaceController.h"
#include "core/state/Session.h"
#include "core/state/Settings.h"
#include "core/state/Strings.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"

#include <functional>

namespace sonorel {

struct AlertTexts {
  QString message;
  QString informativeText;
};

class WindowTexts {
public:
  // Gives a share without photo favourites the ones it is handed; throws Failure.
  using CreatePhotoFavourites = std::function<void(const QByteArray &emptyList)>;

  // All references must outlive the object.
  WindowTexts(FileSystem &files, Desktop &desktop, const Settings &settings, Strings &strings, Session &session,
              InterfaceController &interface, const ClientPaths &paths, CreatePhotoFavourites createPhotoFavourites);

  // An index outside the pop-up keeps the language. Nothing happens while the pop-up is disabled.
  void langSelect(int index);
  // The strings from the disk, the product's name from the settings, every label anew. A player other than
  // "Vaultbox 1" gets an empty list of photo favourites when the share is there and holds none.
  void updateDeviceName();
  void onHelp();
  // "ErrorConnect", split at its line feed; the English one when the current language has none of two parts.
  [[nodiscard]] AlertTexts errorConnect();
  // The standard alert with both texts of errorConnect.
  void showErrorConnect();
  // The standard alert after an exception while connecting.
  void showErrorConnecting();

private:
  void providePhotoFavourites();
  void openHelp();

  FileSystem &m_files;
  Desktop &m_desktop;
  const Settings &m_settings;
  Strings &m_strings;
  Session &m_session;
  InterfaceController &m_interface;
  const ClientPaths &m_paths;
  CreatePhotoFavourites m_createPhotoFavourites;
};

} // namespace sonorel
