#include "transfer/TransferDriver.h"

#include "core/state/DockImages.h"
#include "core/state/Report.h"
#include "transfer/PathNames.h"
#include "transfer/TemporaryDragFiles.h"
#include "transfer/TrackNames.h"

#include <QScopeGuard>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint64 kSmallestSound = 0x1FFFF; // a sound file must be larger
constexpr quint64 kSmallestWav = 0x4FFFFF;
constexpr int kArtworkBeside = 2;

// A source that cannot be looked at is as good as missing: nothing on the share hangs on it.
std::optional<FileAttributes> sourceFacts(FileSystem &files, const QString &path, Links links) {
  try {
    return files.attributes(path, links);
  } catch (const Failure &) {
    return std::nullopt;
  }
}

} // namespace

struct TransferDriver::Item {
  QString path;
  QString extension;
  QString name; // last path component
  bool isAppleLossless = false;
  int hierarchyFlag = 0;
};

TransferDriver::TransferDriver(const TransferTools &tools, Transfer &transfer, MessageLog &log, Strings &strings,
                               const Session &session, View &view, Worker &worker, ShareFolders folders,
                               QString mainDictPath, Hooks hooks)
    : m_tools(tools), m_transfer(transfer), m_log(log), m_strings(strings), m_session(session), m_view(view),
      m_worker(worker), m_folders(std::move(folders)), m_mainDictPath(std::move(mainDictPath)),
      m_hooks(std::move(hooks)) {}

void TransferDriver::startTransfer() {
  m_worker.join(); // the last step of an earlier transfer takes the mark away
  m_isAtWork = true;
  auto notStarted = qScopeGuard([this] { m_isAtWork = false; });
  m_worker.start([this](std::stop_token stop) { transferToVaultbox(std::move(stop)); });
  notStarted.dismiss();
}

void TransferDriver::transferToVaultbox(std::stop_token stop) {
  const auto done = qScopeGuard([this] { m_isAtWork = false; });
  m_stop = stop;
  m_transfer.setStopToken(stop);
  for (bool again = true; again;) {
    try {
      again = runTransfer();
    } catch (const std::exception &exception) {
      again = cleanUpAfterException(exception) && goesOn();
    }
  }
}

// True when a drop waited and is to be carried now.
bool TransferDriver::runTransfer() {
  m_view.selectTab(Tab::Transfer);
  m_tools.board.fileIndex = 0;
  m_trackCounter = 0;
  m_place = 0;
  m_transferred = {};
  m_showTransferCompleteMessage = false;
  m_tools.metadata.clear();
  m_log.startNew();
  m_view.transferStateChanged();
  m_view.setDockIcon(kTransferIcon);
  if (!carryQueue()) {
    endForSleep();
    return false;
  }
  endTransfer();
  return finishTransferHandler() && goesOn();
}

bool TransferDriver::carryQueue() {
  TransferBoard &board = m_tools.board;
  for (;;) {
    const qsizetype index = board.fileIndex;
    const auto entry = board.at(index);
    if (!entry) {
      if (board.endWhenNothingAt(index)) {
        return true;
      }
      continue;
    }
    const After after = carryItem(*entry);
    if (after == After::Slept) {
      return false;
    }
    if (after == After::Ending) {
      board.beginEnding();
      return true;
    }
    m_place += entry->places();
    board.fileIndex = index + 1;
  }
}

TransferDriver::After TransferDriver::carryItem(const QueueEntry &entry) {
  Item item{entry.item, pathExtension(entry.item), lastPathComponent(entry.item)};
  m_transfer.isValidFile(item.extension);
  if (entry.kind == QueueEntry::Kind::Radio) {
    reportRadio(entry.item);
    return After::NextItem;
  }
  if (!m_transfer.isBookmarkFileType() && m_tools.files.presence(item.path) == Presence::Absent) {
    if (!m_hooks.isConnected()) {
      return shareLost(kDisconnectImage);
    }
    reportMissing(item.path);
    return After::NextItem;
  }
  if (m_tools.board.manualSleepWasConnected) {
    return After::Slept;
  }
  if (m_tools.board.isCancel || m_stop.stop_requested()) {
    return After::Ending;
  }
  m_view.setEnableDisableCancelBtn(true);
  m_view.setHighlightCancelBtn(true);
  m_view.setLanguageEnabled(false);
  m_transfer.isValidFile(item.extension);
  item.isAppleLossless = checkFileType(item.extension, u"m4a") && checkAppleLossless(item.path);
  if (m_tools.board.track(m_trackCounter) == item.path) {
    ++m_trackCounter;
    item.hierarchyFlag = 1;
  }
  if (m_trackCounter == 1) {
    m_hooks.enableCFLLimits();
  }
  After after = After::NextItem;
  if (m_transfer.isSoundFileType() && !item.isAppleLossless) {
    after = carrySound(item);
  } else {
    rejectItem(item);
  }
  if (after == After::NextItem) {
    showProgressBehind(entry);
  }
  return after;
}

void TransferDriver::showProgressBehind(const QueueEntry &entry) {
  const qsizetype done = m_place + entry.places();
  const qsizetype all = qMax(done, m_tools.board.places()); // a wake may have emptied the queue
  setProgress(static_cast<double>(done) * 100.0 / static_cast<double>(all));
}

TransferDriver::After TransferDriver::carrySound(const Item &item) {
  const auto clearFlag = qScopeGuard([this] { m_transfer.setSoundFileType(false); });
  try {
    if (isVaultboxDiskFree(item.path)) {
      return copySound(item);
    }
    return m_isNetworkAlive ? diskFull() : shareLost(kDisconnectImage);
  } catch (const std::exception &exception) {
    return exceptionInSound(exception);
  }
}

TransferDriver::After TransferDriver::copySound(const Item &item) {
  const auto facts = sourceFacts(m_tools.files, item.path, Links::Follow);
  if (!facts) {
    reportMissing(item.path);
    return After::NextItem;
  }
  const quint64 size = facts->size;
  const bool isWav = item.extension == u"wav";
  if (size <= kSmallestSound && !isWav) {
    showMessage(withFileName(message(u"Message15"_s), item.name));
    m_view.windowFrontCentre();
    return After::NextItem;
  }
  if (isWav && size <= kSmallestWav) {
    showMessage(withFileName(message(u"Message7"_s), item.name));
    m_view.windowFrontCentre();
    return After::NextItem;
  }
  const auto tags = m_tools.metadata.tags(item.path);
  if (!tags) {
    m_tools.desktop.log(item.path + u"... File has no metadata!"_s);
  }
  m_tools.board.setCurrentTrack(tags ? trackTexts(*tags) : TrackTexts());
  const QString changedSongName = changeSongFileName(item.path, tags);
  // What is seen of the record until the track stands on the share.
  m_tools.board.updateRecords(false, item.path, [&changedSongName](PlaylistInfo &record) {
    if (record.songTransferFlag != u"Y") {
      record.destinationSongName = changedSongName;
    }
  });
  const int artworkMode = m_session.deviceName() == kVaultbox1 ? 0 : kArtworkBeside;
  if (m_transfer.transferSoundFile(item.path, changedSongName, artworkMode, item.hierarchyFlag)) {
    m_transferred.soundFileTransferred = true;
    m_showTransferCompleteMessage = true;
    return After::NextItem;
  }
  if (m_tools.board.manualSleepWasConnected) {
    return After::Slept; // the copy was ended, and this item is the first of the list after the wake
  }
  const bool shareIsThere = m_tools.files.presence(m_folders.system()) == Presence::Present;
  if (!shareIsThere && !m_tools.board.isCancel) {
    return shareLost(kConnectImage);
  }
  if (m_transfer.settledOnIdenticalFile() || isAlreadyOnTheServer(item)) {
    m_showTransferCompleteMessage = true;
    return After::NextItem;
  }
  m_log.appendSeparator();
  showMessage(withFileName(message(u"Message10"_s), item.name));
  return After::NextItem;
}

bool TransferDriver::isVaultboxDiskFree(const QString &sourcePath) {
  const QString vaultboxDiskPath = m_folders.share();
  const auto facts = sourceFacts(m_tools.files, sourcePath, Links::NoFollow);
  const auto volume = m_tools.files.volume(vaultboxDiskPath);
  m_isNetworkAlive = m_hooks.isConnected();
  const quint64 size = facts ? facts->size : 0; // a missing source is not the disk's fault
  return volume && volume->mountRoot == vaultboxDiskPath && size < volume->freeBytes;
}

bool TransferDriver::checkAppleLossless(const QString &path) {
  const auto tags = m_tools.metadata.tags(path);
  if (!tags) {
    m_tools.desktop.log(path + u"... File has no metadata inside AppleLossless!"_s);
    return false;
  }
  return !tags->codecs.isEmpty() && tags->codecs.constFirst() == u"Apple Lossless";
}

bool TransferDriver::isAlreadyOnTheServer(const Item &item) {
  for (const QString &candidate : serverCandidates(item)) {
    if (m_transfer.isFileAlreadyExistsOnVaultbox1(item.path, candidate)) {
      return true;
    }
  }
  return false;
}

QStringList TransferDriver::serverCandidates(const Item &item) {
  const auto tags = m_tools.metadata.tags(item.path);
  const QString base = m_folders.music();
  const QString hierarchy = hierarchyFolder(item.path, item.hierarchyFlag == 1);
  const QString newName = cleanedName(changeSongFileName(item.path, tags));
  const QString olderName = cleanedName(changeSongFileNameOlderWay(item.path, tags));
  const QString parenthesised = withExtension(u'(' + nameWithoutExtension(item.path) + u')', item.extension);
  const QString shortened = shortenedRelativeName(hierarchy + newName);
  const QString folder = shortened.left(shortened.lastIndexOf(u'/') + 1);
  return {base + shortened,
          base + folder + item.name,
          base + withinNameLimit(folder + parenthesised),
          base + newName,
          base + item.name,
          base + withinNameLimit(parenthesised),
          base + olderName,
          base + shortenedRelativeName(hierarchy + olderName)};
}

void TransferDriver::rejectItem(const Item &item) {
  const QString quoted = u'"' + item.name + u'"';
  if (item.isAppleLossless) {
    showMessage(quoted + withProductName(message(u"Message9"_s), m_session.deviceName()));
    m_view.windowFrontCentre();
    return;
  }
  if (item.extension == u"m4p") {
    showMessage(quoted + message(u"Message8"_s));
    m_view.windowFrontCentre();
    return;
  }
  showMessage(withFileName(message(u"Message5"_s), item.name));
  if (item.extension == u"inetloc") {
    removeTemporaryDragFile(m_tools.files, m_tools.desktop, m_tools.homePath, item.name);
  }
}

void TransferDriver::reportRadio(const QString &item) {
  showMessage(withFileName(message(u"Message14"_s), item.mid(kRadioPrefix.size())));
  m_view.selectTab(Tab::Transfer);
  m_view.windowFrontCentre();
}

} // namespace sonorel
