#include "transfer/TrackArtwork.h"

#include "core/state/PathNames.h"
#include "platform/ApplicationPaths.h"
#include "platform/Failure.h"
#include "transfer/Removal.h"
#include "transfer/TrackNames.h"

#include <QScopeGuard>

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::seconds kScriptDeadline{60};
constexpr std::chrono::milliseconds kLookForAnswer{100};
constexpr int kOpenPlayer = 0;
constexpr int kWithoutArtwork = 1;
constexpr int kNoAnswer = -1;
constexpr int kStillOpen = -2;
constexpr int kSignalled = 128; // and the number of the signal

// Not by the stop: then there is no time for more than the script does itself.
bool wasKilled(const ToolResult &result) {
  return result.ending == ToolEnding::DeadlinePassed ||
         (result.ending == ToolEnding::Exited && result.status > kSignalled);
}

} // namespace

QString artworkTemporaryName(const QString &mark) {
  return mark.isEmpty() ? QString() : kTemporaryPrefix.toString() + mark + u"-artwork"_s;
}

struct TrackArtwork::Picture {
  QString name;           // without ".jpg"
  QString folderArgument; // below the music folder, each component followed by ":"
  QString serverFolder;
};

TrackArtwork::TrackArtwork(const TransferTools &tools, RunningApplications &applications, Strings &strings,
                           View &view, ShareFolders folders, ArtworkPaths paths)
    : m_tools(tools), m_applications(applications), m_strings(strings), m_view(view), m_folders(std::move(folders)),
      m_paths(std::move(paths)) {}

void TrackArtwork::embedArtworkToTrack(const QString &track, const std::stop_token &stop) {
  const QString title = getTitleOfTrack(track, m_tools.metadata.tags(track));
  (void)runScript(kEmbedderScript.toString(), {track, title}, stop);
}

void TrackArtwork::transferStandAloneArtwork(const QString &track, const QString &changedFileName,
                                             bool useFolderHierarchy, const std::stop_token &stop) {
  if (!isApplicationRunning(u"iTunes"_s) && !mayOpenPlayer(stop)) {
    return;
  }
  try {
    exportPicture(track, pictureOf(track, changedFileName, useFolderHierarchy), stop);
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"The artwork of %1 could not be placed: %2"_s.arg(track, failure.reason()));
  }
}

bool TrackArtwork::isApplicationRunning(const QString &name) {
  const std::vector<RunningApplication> launched = m_applications.launched();
  return std::any_of(launched.begin(), launched.end(), [&](const RunningApplication &application) {
    return application.name == name && application.path != m_paths.bundle;
  });
}

// The name has no extension: a full stop in it is part of it.
TrackArtwork::Picture TrackArtwork::pictureOf(const QString &track, const QString &changedFileName,
                                              bool useFolderHierarchy) const {
  QString relative = hierarchyFolder(track, true) + nameWithoutExtension(changedFileName);
  while (relative.size() >= kNameLimit && relative.contains(u'/')) {
    relative = relative.mid(relative.indexOf(u'/') + 1);
  }
  const qsizetype nameStart = relative.lastIndexOf(u'/') + 1;
  QString folder = useFolderHierarchy ? relative.left(nameStart) : QString();
  Picture picture;
  picture.name = truncateFileName(relative.mid(nameStart));
  picture.serverFolder = m_folders.music() + folder;
  picture.folderArgument = folder.replace(u'/', u':');
  return picture;
}

void TrackArtwork::exportPicture(const QString &track, const Picture &picture, const std::stop_token &stop) {
  const QString title = getTitleOfTrack(track, m_tools.metadata.tags(track));
  m_tools.files.write(m_paths.handOverFile, QStringList{title, picture.name, track}.join(u'\n').toUtf8());
  const ToolResult result =
      runScript(kExporterScript.toString(), {track, title, picture.name, picture.folderArgument}, stop);
  if (succeeded(result)) {
    removeBeside(picture, u"._"_s + picture.name + u".jpg"_s);
  } else if (wasKilled(result) && !m_paths.temporaryName.isEmpty()) {
    removeBeside(picture, m_paths.temporaryName);
  }
}

void TrackArtwork::removeBeside(const Picture &picture, const QString &name) {
  try {
    m_tools.files.removeFile(picture.serverFolder + name);
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      logNotRemoved(m_tools.desktop, picture.serverFolder + name, failure);
    }
  }
}

ToolResult TrackArtwork::runScript(const QString &name, const QStringList &arguments, const std::stop_token &stop) {
  const QStringList all = QStringList{m_paths.appDataFolder + name} + arguments;
  const ToolResult result =
      m_tools.processes.run({u"/usr/bin/osascript"_s, all, std::nullopt, kScriptDeadline}, stop);
  if (!succeeded(result)) {
    m_tools.desktop.log(u"script unsuccessful.."_s);
  }
  return result;
}

bool TrackArtwork::mayOpenPlayer(const std::stop_token &stop) {
  if (m_userShouldNotBeAskedToRunItunes) {
    return false;
  }
  const int answer = answerOfUser(stop);
  m_userShouldNotBeAskedToRunItunes = answer == kWithoutArtwork;
  return answer == kOpenPlayer;
}

// Whoever waits here holds no lock: the answer comes from the controller's thread, as a cancel and a sleep do.
int TrackArtwork::answerOfUser(const std::stop_token &stop) {
  m_strings.reload();
  // Shared: an answer may come after the wait was given up.
  const auto answer = std::make_shared<std::atomic<int>>(kStillOpen);
  const quint32 question =
      m_view.ask({.message = u"Sonorel"_s,
                  .informativeText = m_strings.text(u"iTunesQuitMessageText"_s),
                  .buttons = {m_strings.text(u"iTunesQuitOpenText"_s), m_strings.text(u"iTunesQuitCloseText"_s)}},
                 [answer](int button) { *answer = button; });
  const auto nobodyWaits = qScopeGuard([this, question] { m_view.withdraw(question); });
  const TransferBoard &board = m_tools.board;
  while (*answer == kStillOpen) {
    if (board.isCancel || board.manualSleepWasConnected || !m_tools.clock.sleep(kLookForAnswer, stop)) {
      return kNoAnswer;
    }
  }
  return *answer;
}

} // namespace sonorel
