#include "transfer/TransferDriver.h"

#include "core/state/DockImages.h"
#include "core/state/LogException.h"
#include "core/state/PathNames.h"
#include "transfer/Removal.h"

#include <QScopeGuard>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

TransferDriver::TransferDriver(const TransferTools &tools, Transfer &transfer, MessageLog &log, Strings &strings,
                               const Session &session, View &view, Worker &worker, ShareFolders folders,
                               QString mainDictPath, Hooks hooks)
    : m_tools(tools), m_transfer(transfer), m_session(session), m_view(view),
      m_messages(log, strings, view, tools.board), m_worker(worker), m_folders(std::move(folders)),
      m_mainDictPath(std::move(mainDictPath)), m_hooks(std::move(hooks)) {}

void TransferDriver::startTransfer() {
  m_worker.join(); // the last step of an earlier transfer takes the mark away
  m_isAtWork = true;
  m_hasToldOfWaitingDrop = false;
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
      again = settleWaitingDrop(cleanUpAfterException(exception));
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
  m_messages.startNew();
  m_view.transferStateChanged();
  m_view.setDockIcon(kTransferIcon);
  if (!carryQueue()) {
    endForSleep();
    return false;
  }
  endTransfer();
  return settleWaitingDrop(finishTransferHandler());
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
    m_messages.reportRadio(entry.item);
    return After::NextItem;
  }
  if (!m_transfer.isBookmarkFileType() && m_tools.files.presence(item.path) == Presence::Absent) {
    if (!m_hooks.isConnected()) {
      return shareLost(kDisconnectImage);
    }
    m_messages.reportMissing(item.path);
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
  item.isAppleLossless = checkFileType(item.extension, u"m4a") && checkAppleLossless(item.path);
  if (m_tools.board.track(m_trackCounter) == item.path) {
    ++m_trackCounter;
    item.hierarchyFlag = 1;
  }
  if (m_trackCounter == 1) {
    m_hooks.enableCFLLimits();
  }
  const After after = carryByType(entry, item);
  if (after == After::NextItem) {
    showProgressBehind(entry);
  }
  return after;
}

TransferDriver::After TransferDriver::carryByType(const QueueEntry &entry, const Item &item) {
  if (m_transfer.isSoundFileType() && !item.isAppleLossless) {
    return carrySound(item);
  }
  if (m_transfer.isVideoFileType()) {
    return carryVideo(item);
  }
  if (m_transfer.isPhotoOrVideoFileType()) {
    return carryPicture(item);
  }
  if (m_transfer.isBookmarkFileType()) {
    return carryBookmark(entry, item);
  }
  rejectItem(item);
  return After::NextItem;
}

TransferDriver::After TransferDriver::whenItFits(const Item &item, After (TransferDriver::*copy)(const Item &)) {
  if (isVaultboxDiskFree(item.path)) {
    return (this->*copy)(item);
  }
  return m_isNetworkAlive ? diskFull() : shareLost(kDisconnectImage);
}

bool TransferDriver::isShareThere() {
  const auto volume = m_tools.files.volume(m_folders.share());
  return volume && volume->answers && m_tools.files.presence(m_folders.system()) == Presence::Present;
}

void TransferDriver::showProgressBehind(const QueueEntry &entry) {
  const qsizetype done = m_place + entry.places();
  const qsizetype all = qMax(done, m_tools.board.places()); // a wake may have emptied the queue
  m_messages.setProgress(static_cast<double>(done) * 100.0 / static_cast<double>(all));
}

bool TransferDriver::isVaultboxDiskFree(const QString &sourcePath) {
  const QString vaultboxDiskPath = m_folders.share();
  const auto facts = sourceFacts(sourcePath, Links::NoFollow);
  const auto volume = m_tools.files.volume(vaultboxDiskPath);
  m_isNetworkAlive = m_hooks.isConnected();
  const quint64 size = facts ? facts->size : 0; // a missing source is not the disk's fault
  return volume && volume->mountRoot == vaultboxDiskPath && size < volume->freeBytes;
}

std::optional<FileAttributes> TransferDriver::sourceFacts(const QString &path, Links links) {
  try {
    return m_tools.files.attributes(path, links);
  } catch (const Failure &) {
    return std::nullopt;
  }
}

bool TransferDriver::checkAppleLossless(const QString &path) {
  const auto tags = m_tools.metadata.tags(path);
  if (!tags) {
    m_tools.desktop.log(path + u"... File has no metadata inside AppleLossless!"_s);
    return false;
  }
  return !tags->codecs.isEmpty() && tags->codecs.constFirst() == u"Apple Lossless";
}

void TransferDriver::rejectItem(const Item &item) {
  const QString quoted = u'"' + item.name + u'"';
  if (item.isAppleLossless) {
    m_messages.showInFront(quoted + withProductName(m_messages.text(u"Message9"_s), m_session.deviceName()));
    return;
  }
  if (item.extension == u"m4p") {
    m_messages.showInFront(quoted + m_messages.text(u"Message8"_s));
    return;
  }
  m_messages.show(m_messages.text(u"Message5"_s, item.name));
  if (item.extension == u"inetloc") {
    removeTemporaryDragFile(m_tools.files, m_tools.desktop, m_tools.homePath, item.name);
  }
}

} // namespace sonorel
