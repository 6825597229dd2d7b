#include "core/WindowTexts.h"

#include "core/Labels.h"
#include "core/Languages.h"
#include "core/state/LogException.h"
#include "core/state/ShareLayout.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint64 kResourceLimit = 1024ULL * 1024;
const auto kErrorConnect = u"ErrorConnect"_s;
const auto kPhotoFavourites = u"PhotoFavorites.orv"_s;

std::optional<AlertTexts> twoParts(const QString &text) {
  const QStringList parts = text.split(u'\n');
  return parts.size() == 2 ? std::optional(AlertTexts{parts.at(0), parts.at(1)}) : std::nullopt;
}

} // namespace

WindowTexts::WindowTexts(FileSystem &files, Desktop &desktop, const Settings &settings, Strings &strings,
                         Session &session, InterfaceController &interface, const ClientPaths &paths,
                         CreatePhotoFavourites createPhotoFavourites)
    : m_files(files), m_desktop(desktop), m_settings(settings), m_strings(strings), m_session(session),
      m_interface(interface), m_paths(paths), m_createPhotoFavourites(std::move(createPhotoFavourites)) {}

void WindowTexts::langSelect(int index) {
  if (!m_interface.state().languageEnabled) {
    return;
  }
  const QStringList files = languageFiles();
  if (index >= 0 && index < files.size()) {
    m_strings.setLanguageFile(files.at(index));
  }
  updateDeviceName();
}

void WindowTexts::updateDeviceName() {
  m_strings.reload();
  m_session.setDeviceName(m_settings.text(u"ProductName"_s));
  try {
    providePhotoFavourites();
  } catch (const std::exception &e) {
    logException(m_desktop, u"updateDeviceName"_s, e);
  }
  m_interface.setDeviceName(m_session.deviceName());
  m_interface.setLabels(windowLabels(m_strings, m_session.deviceName()), m_strings.languageFile());
}

void WindowTexts::providePhotoFavourites() {
  const QString resource = m_paths.resourceFilePath + kPhotoFavourites;
  if (m_session.deviceName() == kVaultbox1 || m_files.presence(resource) != Presence::Present) {
    return;
  }
  // Only where a share is mounted: a folder of that path on this disk is none.
  const QString path = kPhotoFavouritesPath.toString();
  const auto volume = m_files.volume(path);
  if (!volume || volume->mountRoot != kMountPoint) {
    return;
  }
  const auto existing = m_files.attributes(path, Links::Follow);
  if (!existing || existing->size == 0) {
    // Absent may also mean that a rewrite is under way, or was interrupted: that is looked at where files are
    // written.
    m_createPhotoFavourites(m_files.read(resource, kResourceLimit));
  }
}

void WindowTexts::onHelp() {
  m_strings.reload();
  try {
    openHelp();
  } catch (const std::exception &e) {
    logException(m_desktop, u"onHelp"_s, e);
    m_interface.alert(m_strings.text(u"ExceptionText"_s), m_strings.text(u"ErrorHelp"_s));
  }
}

// The desktop says "opened" for a document that is missing, so that is asked first.
void WindowTexts::openHelp() {
  const QString file = m_settings.text(u"HelpFile"_s);
  const QString path = m_paths.resourceFilePath + file;
  if (file.isEmpty() || m_files.presence(path) != Presence::Present || !m_desktop.openDocument(path)) {
    throw Failure(u"errorWhileOpeningHelpFile: "_s + path);
  }
}

AlertTexts WindowTexts::errorConnect() {
  if (const auto own = twoParts(m_strings.text(kErrorConnect))) {
    m_desktop.log(u"Message:\n==%1=="_s.arg(own->message));
    m_desktop.log(u"Information:\n==%1=="_s.arg(own->informativeText));
    return *own;
  }
  if (const auto english = twoParts(m_strings.textIn(kDefaultLanguageFile.toString(), kErrorConnect))) {
    m_desktop.log(u"Default Message:\n==%1=="_s.arg(english->message));
    m_desktop.log(u"Default Information:\n==%1=="_s.arg(english->informativeText));
    return *english;
  }
  return {};
}

void WindowTexts::showErrorConnect() {
  const AlertTexts texts = errorConnect();
  m_interface.alert(texts.message, texts.informativeText);
}

void WindowTexts::showErrorConnecting() {
  m_interface.alert(m_strings.text(u"ExceptionText"_s),
                    withProductName(m_strings.text(u"ErrorConnecting"_s), m_session.deviceName()));
}

} // namespace sonorel
