#include "core/SystemIntegration.h"

#include "core/state/LogException.h"
#include "platform/ShareNames.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kSpacePeriod{1'000};

bool isAgent(const RunningApplication &application) {
  return application.bundleIdentifier.compare(u"com.orv.TrackChute"_s, Qt::CaseInsensitive) == 0 ||
         application.bundleIdentifier.compare(u"com.yourcompany.TrackChute"_s, Qt::CaseInsensitive) == 0;
}

} // namespace

SystemIntegration::SystemIntegration(RunningApplications &applications, Processes &processes, Scripts &scripts,
                                     Desktop &desktop, Loop &loop, Settings &settings, const ClientPaths &paths)
    : m_applications(applications), m_processes(processes), m_scripts(scripts), m_desktop(desktop), m_loop(loop),
      m_settings(settings), m_paths(paths) {}

SystemIntegration::~SystemIntegration() {
  stopObservingSpaces();
}

void SystemIntegration::killTrackChuteAndLaunch() {
  const auto launched = m_applications.launched();
  const auto agent = std::find_if(launched.begin(), launched.end(), isAgent);
  if (agent != launched.end()) {
    m_applications.end(*agent);
  }
  if (!m_processes.startDetached(m_paths.agentExecutable, {}) && !std::exchange(m_agentMissed, true)) {
    m_desktop.log(u"the drop agent could not be started: "_s + m_paths.agentExecutable);
  }
}

bool SystemIntegration::addLoginItem(const QString &path, bool hide) {
  if (path.isEmpty()) {
    return false;
  }
  auto items = m_desktop.loginItems();
  items.push_back({path, hide});
  return m_desktop.setLoginItems(items);
}

void SystemIntegration::removeLoginItem(const QString &path) {
  auto items = m_desktop.loginItems();
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const LoginItem &item) { return item.path == path; });
  if (found == items.end()) {
    m_desktop.log(path + u" not found in login items array"_s);
    return;
  }
  items.erase(found);
  if (!m_desktop.setLoginItems(items)) {
    m_desktop.log(u"CFPreferencesSynchronize failed"_s);
  }
}

void SystemIntegration::removeTrackChuteFromLoginItem() {
  m_desktop.removeAgentLoginItems();
}

void SystemIntegration::registerAsLoginItem() {
  for (const LoginItem &item : m_desktop.loginItems()) {
    if (item.path.endsWith(u"Sonorel.app"_s)) {
      removeLoginItem(item.path);
      break;
    }
  }
  if (!addLoginItem(m_paths.bundle, false)) {
    m_desktop.log(u"CFPreferencesSynchronize failed"_s);
  }
}

void SystemIntegration::startObservingSpaces() {
  stopObservingSpaces();
  m_spacesObservingTimer = m_loop.every(kSpacePeriod, [this] { spaceChangeTimerFunction(); });
}

void SystemIntegration::stopObservingSpaces() {
  m_loop.cancel(std::exchange(m_spacesObservingTimer, 0));
}

void SystemIntegration::spaceChangeTimerFunction() {
  try {
    const qint64 space = m_desktop.spaceNumber();
    if (space == kSpaceSwitching || space == m_settings.number(u"SpaceNumber"_s, -1)) {
      return;
    }
    spaceChanged();
    m_settings.setAndSave(u"SpaceNumber"_s, space);
  } catch (const std::exception &e) {
    logException(m_desktop, u"spaceChangeTimerFunction"_s, e);
  }
}

void SystemIntegration::spaceChanged() {
  killTrackChuteAndLaunch();
}

void SystemIntegration::unmountVBShareUsingApplescript() {
  m_scripts.ejectDisk(kShareName.toString());
}

} // namespace sonorel
