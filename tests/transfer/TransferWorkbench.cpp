#include "TransferWorkbench.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

TransferWorkbench::TransferWorkbench(const QString &product)
    : driver(tools, transfer, log, strings, session, view, worker, standardFolders(), u"/mainDict.xml"_s,
             driverHooks()),
      intake(files, board, log, strings, session, view, desktop, intakeHooks()) {
  mountShare(files, product);
  installStrings(files);
  strings.setLanguageFile(u"StringsEnglish"_s);
  strings.reload();
  session.setDeviceName(product);
  intake.setReady();
}

bool TransferWorkbench::shareIsThere() const {
  return const_cast<FakeFileSystem &>(files).presence(u"/Volumes/VB-SHARE$/System"_s) == Presence::Present;
}

TransferDriver::Hooks TransferWorkbench::driverHooks() {
  TransferDriver::Hooks hooks;
  hooks.isConnected = [this] { return isConnected(); };
  hooks.enableCFLLimits = [this] {
    ++limitsEnabled;
    if (const auto once = std::exchange(onLimits, nullptr)) {
      once();
    }
  };
  hooks.sendMetaDataForPlaylist = [this](bool photos) {
    sent.append(photos ? u"pictures"_s : u"music"_s);
    if (!photos) {
      sentRecords = board.records(false);
    }
    if (const auto once = std::exchange(onSend, nullptr)) {
      once();
    }
    return favouritesSucceed;
  };
  hooks.sendMetaDataForTransferredFiles = [this](const TransferredKinds &kinds) {
    sent.append(u"collections"_s + (kinds.soundFileTransferred ? u" sound"_s : QString()) +
                (kinds.photoFileTransferred ? u" photo"_s : QString()) +
                (kinds.videoFileTransferred ? u" video"_s : QString()));
  };
  hooks.hasUnwrittenPlaylists = [this](bool photos) { return !photos && playlistsWait; };
  hooks.dropsFinished = [this](quint32 drops) { dropsFinished += drops; };
  return hooks;
}

DropIntake::Hooks TransferWorkbench::intakeHooks() {
  DropIntake::Hooks hooks;
  hooks.isConnected = [this] { return isConnected(); };
  hooks.startTransfer = [this] { driver.startTransfer(); };
  hooks.killTrackChuteAndLaunch = [] {};
  hooks.dropsFinished = [this](quint32 drops) { dropsFinished += drops; };
  return hooks;
}

void TransferWorkbench::deliver(const QString &name, const QStringList &paths) {
  intake.handleiTunesDragAndDrop({name, {{u"draggedFiles"_s, paths}}});
}

void TransferWorkbench::run() {
  if (worker.hasBody()) {
    worker.run();
  }
}

QString TransferWorkbench::song(const QString &path, const TrackTags &wanted, qsizetype size, qint64 modified) {
  files.put(path, QByteArray(size, 'm'), modified);
  tags.set(path, wanted);
  return path;
}

QStringList TransferWorkbench::musicTree() const {
  QStringList names;
  const auto tree = files.tree(kMusic.chopped(1));
  for (auto entry = tree.begin(); entry != tree.end(); ++entry) {
    if (!entry.value().isEmpty()) { // folders have no bytes
      names.append(entry.key());
    }
  }
  return names;
}

} // namespace sonorel::test
