#include "core/StartUp.h"

#include "core/Languages.h"
#include "core/state/LogException.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

const auto kYes = u"Yes"_s;
const auto kNo = u"No"_s;
const auto kLanguage = u"Language"_s;
const auto kUserFirstLaunch = u"UserFirstLaunch"_s;
const auto kFirstLaunch = u"FirstLaunch"_s;

} // namespace

StartUp::StartUp(const Platform &platform, const ClientPaths &paths, StartUpState state, SystemIntegration &system,
                 View &view, Steps steps)
    : m_platform(platform), m_paths(paths), m_state(state), m_system(system), m_view(view), m_steps(std::move(steps)),
      m_carryOver(platform.files, platform.propertyLists, platform.desktop, state.settings, paths),
      m_machinePreferences(platform.files, platform.propertyLists, platform.desktop, paths.machinePreferences) {}

bool StartUp::init() {
  try {
    endOtherInstances();
    createFolders();
    loadPreferences();
    detectLanguage();
    loadSettings();
    carryOver();
    m_steps.createRoles();
    makeGuid();
    loadStrings();
    m_steps.observeNotifications();
    m_system.startObservingSpaces();
    m_system.killTrackChuteAndLaunch();
    m_system.removeTrackChuteFromLoginItem();
    return true;
  } catch (const std::exception &e) {
    reportInitFailure(e);
    return false;
  }
}

void StartUp::endOtherInstances() {
  for (const RunningApplication &application : m_platform.runningApplications.launched()) {
    if (application.name == u"Sonorel"_s && application.path != m_paths.bundle) {
      m_platform.runningApplications.end(application);
      m_system.unmountVBShareUsingApplescript();
    }
  }
}

void StartUp::createFolders() {
  for (const QString &folder :
       {m_paths.machineParent, m_paths.machineFolder, m_paths.supportParent, m_paths.supportFolder}) {
    createFolderIfMissing(folder);
  }
  if (m_platform.files.presence(m_paths.machinePreferences) == Presence::Absent) {
    m_machinePreferences.write({}, kFolderMode);
  }
}

// With the levels above it: a home folder need not hold a "Library" yet.
void StartUp::createFolderIfMissing(const QString &path) {
  if (m_platform.files.presence(path) == Presence::Present) {
    return;
  }
  const qsizetype separator = path.lastIndexOf(u'/');
  if (separator > 0) {
    createFolderIfMissing(path.left(separator));
  }
  m_platform.files.createFolder(path, kFolderMode);
}

void StartUp::loadPreferences() {
  const bool isMissing = m_platform.files.presence(m_paths.preferences) == Presence::Absent;
  const QString oddity = m_state.preferences.load();
  if (!isMissing && !oddity.isEmpty()) {
    m_platform.desktop.log(oddity);
  }
  if (m_platform.files.presence(m_paths.preferences) != Presence::Absent) {
    return; // a damaged one has been set aside
  }
  m_state.preferences.change([](QVariantMap &values) {
    values = {{kLanguage, kDefaultLanguageFile.toString()}, {u"ArtworkOption"_s, 0}, {kUserFirstLaunch, kYes}};
  });
}

void StartUp::detectLanguage() {
  const QString detected = languageFileFor(m_platform.desktop.systemLanguage());
  if (m_state.preferences.text(kUserFirstLaunch) == kYes) {
    m_state.preferences.setAndSave(kLanguage, detected);
    m_system.registerAsLoginItem();
  }
}

void StartUp::loadSettings() {
  const QString oddity = m_state.settings.load();
  if (!oddity.isEmpty()) {
    m_platform.desktop.log(oddity);
  }
  m_state.settings.set(u"SpaceNumber"_s, m_platform.desktop.spaceNumber());
}

void StartUp::carryOver() {
  m_carryOver.fromReceipts();
  if (m_machinePreferences.exists() && m_state.settings.text(kFirstLaunch) == kYes) {
    m_carryOver.fromMachinePreferences();
  }
}

void StartUp::makeGuid() {
  if (m_state.settings.text(kFirstLaunch) == kYes) {
    m_state.settings.setAndSave(u"GUID"_s, u'{' + m_platform.identifiers.generateUUID() + u'}');
  }
  m_state.session.setUUID(m_state.settings.text(u"GUID"_s));
}

void StartUp::loadStrings() {
  const QString language = m_state.preferences.text(kLanguage);
  const QString file = language.isEmpty() ? kDefaultLanguageFile.toString() : language;
  m_state.settings.set(u"LastLanguage"_s, file);
  m_state.strings.setLanguageFile(file);
  m_state.strings.reload();
  m_state.session.setDeviceName(m_state.settings.text(u"ProductName"_s));
  m_checkMarkString = m_state.strings.text(u"checkMark"_s);
  const QString flag = m_state.settings.text(u"AU5SupportsUnicode"_s);
  m_state.session.setAU5UTF8Compliant(flag.isEmpty() ? kNo.toUpper() : flag);
}

void StartUp::reportInitFailure(const std::exception &exception) {
  logException(m_platform.desktop, u"init"_s, exception);
  if (!m_state.strings.contains(u"ErrorInitializing"_s)) {
    m_state.strings.setLanguageFile(kDefaultLanguageFile.toString());
    m_state.strings.reload();
  }
  m_view.ask({.message = m_state.strings.text(u"ExceptionText"_s),
              .informativeText = m_state.strings.text(u"ErrorInitializing"_s),
              .buttons = {m_state.strings.text(u"BtnOk"_s)}},
             [terminate = m_steps.terminate](int) { terminate(); });
}

void StartUp::awakeFromNib() {
  m_steps.showConnecting(true);
  bool goesOn = true;
  whileAwaking([&] { goesOn = prepareAndConnect(); });
  if (!goesOn) {
    return;
  }
  // After a failure as well: who cannot reach one product wants to see the others.
  whileAwaking(m_steps.createDiscovery);
  m_steps.showConnecting(false);
}

bool StartUp::prepareAndConnect() {
  m_steps.prepareProducts();
  m_state.session.setIPAddressString({});
  m_state.session.setPasswordString({});
  m_steps.updateDeviceName();
  if (!m_steps.registerForPower()) {
    m_platform.desktop.printError(u"IORegisterForSystemPower failed\n"_s);
    return false;
  }
  m_state.strings.reload();
  m_steps.connectAutomatically();
  return true;
}

void StartUp::whileAwaking(const std::function<void()> &step) {
  try {
    step();
  } catch (const std::exception &e) {
    logException(m_platform.desktop, u"awakeFromNib"_s, e);
    m_steps.showTrueState();
    m_view.alert(m_state.strings.text(u"ExceptionText"_s),
                 withProductName(m_state.strings.text(u"ErrorConnecting"_s), m_state.session.deviceName()));
  }
}

void StartUp::performFirstLaunchCheck() {
  if (m_state.preferences.text(kUserFirstLaunch) == kYes) {
    m_state.preferences.setAndSave(kUserFirstLaunch, kNo);
  }
  if (m_state.settings.text(kFirstLaunch) == kYes) {
    m_state.settings.setAndSave(kFirstLaunch, kNo);
  }
}

} // namespace sonorel
