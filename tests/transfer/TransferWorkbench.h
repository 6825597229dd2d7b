// One client without a window: intake, driver and Transfer over the fakes, with a mounted share and the shipped
// English texts. deliver drops, run carries what was dropped on the test's own thread.
#pragma once

#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/FakeFileSystem.h"
#include "support/FakeMetadata.h"
#include "support/FakeProcesses.h"
#include "support/FakeScripts.h"
#include "support/FakeView.h"
#include "support/FakeWorker.h"
#include "support/Fixtures.h"
#include "transfer/DropIntake.h"
#include "transfer/TransferDriver.h"

#include <gtest/gtest.h>

namespace sonorel::test {

class TransferWorkbench {
public:
  explicit TransferWorkbench(const QString &product = QStringLiteral("Auracore 5"));

  void deliver(const QString &name, const QStringList &paths);
  // The worker's body, when one was started.
  void run();
  void drop(const QString &name, const QStringList &paths) {
    deliver(name, paths);
    run();
  }
  // A local sound file of that size with tags.
  QString song(const QString &path, const TrackTags &tags, qsizetype size = 200'000, qint64 modified = 1000);
  // The files below the music folder.
  [[nodiscard]] QStringList musicTree() const;

  FakeFileSystem files;
  FakeClock clock{&files};
  FakeProcesses processes{files};
  FakeScripts scripts;
  FakeMetadata tags;
  FakeDesktop desktop;
  FakeView view;
  FakeWorker worker;
  LibplistPropertyLists propertyLists;
  Session session;
  TransferBoard board;
  Strings strings{files, propertyLists, resourceFolder()};
  MessageLog log{[this] { view.fillMessageLog([this] { return log.viewText(); }); }};
  MetadataCache cache{files, tags};
  TransferTools tools{files, processes, scripts, clock, desktop, cache, board, QStringLiteral("/Users/me")};
  Transfer transfer{tools, standardFolders()};

  QStringList sent;                // "music", "pictures", "collections sound" in the order of the calls
  QList<PlaylistInfo> sentRecords; // of the last music playlists
  int limitsEnabled = 0;
  quint32 dropsFinished = 0;
  bool favouritesSucceed = true;
  bool playlistsWait = false;     // music of an earlier transfer
  std::function<void()> onSend;   // once, when the playlists are sent
  std::function<void()> onLimits; // once, when the limits are enabled

  TransferDriver driver;
  DropIntake intake;

private:
  [[nodiscard]] bool isConnected() const { return shareIsThere(); }
  [[nodiscard]] bool shareIsThere() const;
  TransferDriver::Hooks driverHooks();
  DropIntake::Hooks intakeHooks();
};

inline const QString kMusic = QStringLiteral("/Volumes/VB-SHARE$/Music/Mac/");

} // namespace sonorel::test
