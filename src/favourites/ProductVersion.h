// Whether the connected player takes UTF-8 text: `checkAU5SoftwareVersion`. Controller's thread; may block on the
// share.
#pragma once

#include "core/state/Session.h"
#include "core/state/Settings.h"
#include "core/state/ShareLayout.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"

#include <QStringView>

namespace sonorel {

inline constexpr QStringView kFirstUtf8Version = u"5.03.00.2387";

// "YES" when the 12 characters behind the first line break are kFirstUtf8Version or later, compared unit by unit.
[[nodiscard]] QString utf8AnswerOfProductName(const QByteArray &fileBytes);

class ProductVersion {
public:
  // The references must outlive the object.
  ProductVersion(FileSystem &files, Desktop &desktop, Settings &settings, const Session &session,
                 ShareFolders folders);

  // "YES" or "NO", stored as "AU5SupportsUnicode". The caller sets the session's flag.
  [[nodiscard]] QString checkAU5SoftwareVersion();

private:
  [[nodiscard]] QString answer();

  FileSystem &m_files;
  Desktop &m_desktop;
  Settings &m_settings;
  const Session &m_session;
  ShareFolders m_folders;
};

} // namespace sonorel
