// Intake and driver over the real file system, tools and tags of this machine, on the embedded product, without the
// fixed pauses. Runs on the calling thread.
#pragma once

#include "bench/Bench.h"
#include "favourites/PlaylistMetaData.h"
#include "platform/linux/DataFolders.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/QtIdentifiers.h"
#include "platform/linux/TagLibMetadata.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/FakeScripts.h"
#include "support/FakeView.h"
#include "support/FakeWorker.h"
#include "support/Fixtures.h"
#include "transfer/DropIntake.h"
#include "transfer/TransferDriver.h"

namespace sonorel::bench {

[[nodiscard]] inline Roots rootsBelow(const std::filesystem::path &folder) {
  const QString root = QString::fromStdString(folder.string());
  Roots roots;
  roots.data = root + QStringLiteral("/data");
  roots.runtime = root + QStringLiteral("/runtime");
  roots.home = root + QStringLiteral("/home");
  roots.resources = QStringLiteral(SONOREL_RESOURCES);
  roots.scripts = roots.resources;
  roots.embedded = roots.data + QStringLiteral("/Embedded/VB-SHARE$");
  return roots;
}

class RealClient {
public:
  explicit RealClient(const std::filesystem::path &folder) : roots(rootsBelow(folder)) {
    prepareDataFolders(roots);
    strings.setLanguageFile(QStringLiteral("StringsEnglish"));
    session.setDeviceName(QStringLiteral("Auracore 5"));
    session.setIPAddressString(QStringLiteral("embedded"));
    files.createFolder(kMountPoint.toString(), kFolderMode);
    const ToolResult mounted =
        processes.run({QStringLiteral("/sbin/mount"),
                       {QStringLiteral("-t"), QStringLiteral("smbfs"), QStringLiteral("//user:x@embedded/VB-SHARE$"),
                        kMountPoint.toString() + QLatin1Char('/')},
                       std::nullopt,
                       {}},
                      {});
    if (!succeeded(mounted)) {
      throw Failure(QString::fromUtf8(mounted.output));
    }
    intake.setReady();
  }

  Roots roots;
  test::FakeClock clock; // takes the pauses out
  LinuxFileSystem files{roots};
  LinuxProcesses processes{roots};
  LibplistPropertyLists propertyLists;
  QtIdentifiers identifiers;
  TagLibMetadata metadata{[](const QString &path) { return std::optional<QString>(path); }};
  test::FakeScripts scripts;
  test::FakeDesktop desktop;
  test::FakeView view;
  test::FakeWorker worker;
  Session session;
  TransferBoard board;
  Settings settings{files, propertyLists, roots.data + QStringLiteral("/MacClientProperty")};
  Strings strings{files, propertyLists, test::resourceFolder()};
  MessageLog log{[this] { view.fillMessageLog([this] { return log.viewText(); }); }};
  MetadataCache cache{files, metadata};
  TransferTools tools{files, processes, scripts, clock, desktop, cache, board};
  Transfer transfer{tools, test::standardFolders()};
  FavouritesRewrite rewrite{{files, clock, identifiers, desktop, session},
                            test::standardFolders(),
                            roots.data + QLatin1Char('/'),
                            roots.data + QStringLiteral("/Backup")};
  MainDictionaryFile dictionaryFile{files, propertyLists, roots.data + QStringLiteral("/mainDict.xml")};
  MainDictionary dictionary{{desktop, identifiers, settings, session}, rewrite, dictionaryFile};
  ColourLimits limits{
      {files, clock, desktop, [this] { return rewrite.backupFolderOfProduct(); }}, test::standardFolders(), [] {}};
  FavouritesMerge merge{
      {files, propertyLists, clock, desktop, settings, session, dictionary, dictionaryFile, rewrite, limits}};
  PhotoFavourites photoFavourites{desktop, identifiers, session, rewrite};
  PlaylistMetaData metaData{board,
                            merge,
                            photoFavourites,
                            settings,
                            session,
                            identifiers,
                            desktop,
                            {files, propertyLists, desktop, roots.data + QStringLiteral("/Backup")},
                            {[this] { return isConnected(); },
                             [this](const QString &path) {
                               const auto tags = cache.tags(path);
                               return tags ? tags->album : QString();
                             },
                             [] { return std::stop_token(); }}};
  TransferDriver driver{tools,
                        transfer,
                        log,
                        strings,
                        session,
                        view,
                        worker,
                        test::standardFolders(),
                        roots.data + QStringLiteral("/mainDict.xml"),
                        {[this] { return isConnected(); }, [this] { limits.enableCFLLimits(); },
                         [this](bool photos) { return metaData.sendMetaDataForPlaylist(photos); },
                         [](const TransferredKinds &) {}, [](quint32) {}}};
  DropIntake intake{
      files,   board,
      log,     strings,
      session, view,
      desktop, {[this] { return isConnected(); }, [this] { driver.startTransfer(); }, [] {}, [](quint32) {}}};

  [[nodiscard]] bool isConnected() {
    return files.presence(kMountPoint.toString() + QStringLiteral("/System")) == Presence::Present;
  }
  void deliver(const QString &name, const QStringList &paths) {
    intake.handleiTunesDragAndDrop({name, {{QStringLiteral("draggedFiles"), paths}}});
  }
};

} // namespace sonorel::bench
