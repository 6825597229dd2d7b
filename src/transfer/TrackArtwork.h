// The album artwork of a track, by two scripts that drive the player: set into the track before it is copied, or
// saved as a picture beside it on the share. Artwork that fails is logged and never stops a track. When the player is
// not running the user is asked, once for all if the answer is no. Worker thread; blocks while a script runs or the
// question is open, and the stop token, a cancel and a sleep end both.
#pragma once

#include "core/state/ShareLayout.h"
#include "core/state/Strings.h"
#include "core/state/View.h"
#include "platform/RunningApplications.h"
#include "transfer/TransferTools.h"

#include <QString>

#include <stop_token>

namespace sonorel {

struct ArtworkPaths {
  QString bundle;        // of this application
  QString appDataFolder; // holds the scripts, ends in "/"
  QString handOverFile;  // "ArtworkData.txt"
  QString temporaryName; // of a picture that is not whole yet; empty: not known
};

// The name under which the exporter writes for the client of that mark, and nobody else: whoever finds it there later
// knows that it was left. Empty for an empty mark.
[[nodiscard]] QString artworkTemporaryName(const QString &mark);

class TrackArtwork {
public:
  // All references must outlive the object.
  TrackArtwork(const TransferTools &tools, RunningApplications &applications, Strings &strings, View &view,
               ShareFolders folders, ArtworkPaths paths);

  void embedArtworkToTrack(const QString &track, const std::stop_token &stop);
  // changedFileName: the track's file name on the share, whose extension the picture does not have.
  void transferStandAloneArtwork(const QString &track, const QString &changedFileName, bool useFolderHierarchy,
                                 const std::stop_token &stop);
  // One that is not this application itself.
  [[nodiscard]] bool isApplicationRunning(const QString &name);

private:
  struct Picture; // a picture's place on the share

  [[nodiscard]] Picture pictureOf(const QString &track, const QString &changedFileName,
                                  bool useFolderHierarchy) const;
  void exportPicture(const QString &track, const Picture &picture, const std::stop_token &stop);
  [[nodiscard]] ToolResult runScript(const QString &name, const QStringList &arguments, const std::stop_token &stop);
  // Of the file beside the picture; there is none as a rule.
  void removeBeside(const Picture &picture, const QString &name);
  [[nodiscard]] bool mayOpenPlayer(const std::stop_token &stop);
  [[nodiscard]] int answerOfUser(const std::stop_token &stop);

  TransferTools m_tools;
  RunningApplications &m_applications;
  Strings &m_strings;
  View &m_view;
  const ShareFolders m_folders;
  const ArtworkPaths m_paths;
  bool m_userShouldNotBeAskedToRunItunes = false;
};

} // namespace sonorel
