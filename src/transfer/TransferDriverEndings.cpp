// The driver's ways out.
#include "core/state/DockImages.h"
#include "core/state/LogException.h"
#include "transfer/TransferDriver.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kPauseBeforeEnding{1000};

} // namespace

// In each of them the ending begins before the list is made: a drop that comes later is not in the list, and waits
// for a transfer of its own instead of going down with this one.
TransferDriver::After TransferDriver::shareLost(const QString &iconImageType) {
  if (m_tools.board.manualSleepWasConnected) {
    return After::Slept; // it was left on purpose; the list comes after the wake
  }
  m_tools.board.beginEnding();
  m_messages.showWithRemainingList(m_messages.text(u"Message1"_s));
  m_view.windowFrontCentre();
  m_messages.setProgress(100);
  m_view.setDockIcon(iconImageType);
  return After::Ending;
}

TransferDriver::After TransferDriver::diskFull() {
  m_tools.board.beginEnding();
  m_messages.showWithRemainingList(withProductName(m_messages.text(u"Message2"_s), m_session.deviceName()));
  m_view.windowFrontCentre();
  m_messages.setProgress(100);
  return After::Ending;
}

TransferDriver::After TransferDriver::exceptionInBranch(const std::exception &exception) {
  logException(m_tools.desktop, u"transferToVaultbox"_s, exception);
  if (m_tools.board.manualSleepWasConnected) {
    return After::Slept;
  }
  m_isNetworkAlive = m_hooks.isConnected();
  if (m_isNetworkAlive) {
    return After::NextItem;
  }
  m_tools.board.beginEnding();
  m_messages.showWithRemainingList(m_messages.text(u"Message1"_s));
  m_view.stopPulse();
  m_messages.setProgress(0);
  return After::Ending;
}

// A drop that waited has no turn when the client is disconnected or ends: it is told as not transferred, and the
// transfer that it had become ends with that. When the machine sleeps its turn comes all the same: it is broken off
// at its first item and listed after the wake.
bool TransferDriver::settleWaitingDrop(bool dropWaited) {
  TransferBoard &board = m_tools.board;
  while (dropWaited && m_stop.stop_requested() && !board.manualSleepWasConnected) {
    board.beginEnding();
    board.fileIndex = 0;
    m_messages.showWithRemainingList(m_messages.text(u"Message1"_s));
    m_hasToldOfWaitingDrop = true;
    (void)board.takeVideoPresent();
    for (const bool photos : {true, false}) {
      QList<PlaylistInfo> records = board.records(photos);
      records.removeIf([](const PlaylistInfo &record) { return record.songTransferFlag != u"Y"; });
      board.replaceRecords(photos, records);
    }
    const quint32 drops = board.acceptedDrops();
    dropWaited = board.finish();
    m_view.transferStateChanged();
    m_hooks.dropsFinished(drops);
  }
  return dropWaited;
}

void TransferDriver::endForSleep() {
  m_view.stopPulse();
  m_view.setDockIcon(m_hooks.isConnected() ? kConnectImage : kDisconnectImage);
  m_view.setEnableDisableCancelBtn(false);
  m_view.setHighlightCancelBtn(false);
  m_view.setLanguageEnabled(true);
  m_view.setProgressBar(0);
  const quint32 drops = m_tools.board.abort();
  m_view.transferStateChanged();
  m_hooks.dropsFinished(drops);
}

void TransferDriver::endTransfer() {
  TransferBoard &board = m_tools.board;
  m_view.setLanguageEnabled(true);
  if (!board.isCancel) {
    m_tools.clock.sleep(kPauseBeforeEnding, m_stop);
    m_view.setProgressBar(0);
    m_view.setEnableDisableCancelBtn(false);
    m_view.setHighlightCancelBtn(false);
    const bool connected = m_hooks.isConnected();
    if (!connected) {
      m_view.selectTab(Tab::Transfer);
    }
    m_view.setDockIcon(connected ? kConnectImage : kDisconnectImage);
    board.clearQueue();
  }
  sendPlaylists();
  m_hooks.sendMetaDataForTransferredFiles(m_transferred);
}

void TransferDriver::sendPlaylists() {
  TransferBoard &board = m_tools.board;
  bool written = true;
  for (const bool photos : {true, false}) {
    if (board.hasRecords(photos) || m_hooks.hasUnwrittenPlaylists(photos)) {
      written = m_hooks.sendMetaDataForPlaylist(photos) && written;
      board.clearRecords(photos);
    }
  }
  if (!written) {
    m_tools.desktop.log(u"The favourites of this transfer could not be written."_s);
    m_messages.showBehindSeparator(
        withProductName(m_messages.text(u"FavouritesNotWritten"_s), m_session.deviceName()));
  }
}

bool TransferDriver::finishTransferHandler() {
  TransferBoard &board = m_tools.board;
  m_messages.showClosingLine(m_showTransferCompleteMessage);
  m_view.setEnableDisableCancelBtn(false);
  removeMainDictionary();
  const quint32 drops = board.acceptedDrops();
  const bool dropWaited = board.finish();
  m_view.transferStateChanged();
  m_hooks.dropsFinished(drops);
  m_view.transferComplete();
  return dropWaited;
}

// The client stays usable: everything that the end handler clears is cleared, without a closing line. The records
// that are "Y" go out with the next transfer onto the same product.
bool TransferDriver::cleanUpAfterException(const std::exception &exception) {
  m_tools.board.beginEnding(); // a drop from here on waits
  logException(m_tools.desktop, u"transferToVaultbox"_s, exception);
  m_view.setLanguageEnabled(true);
  m_view.stopPulse();
  m_view.setProgressBar(0);
  m_view.setEnableDisableCancelBtn(false);
  m_view.setHighlightCancelBtn(false);
  m_view.setDockIcon(m_hooks.isConnected() ? kConnectImage : kDisconnectImage);
  removeMainDictionary();
  const quint32 drops = m_tools.board.acceptedDrops();
  const bool dropWaited = m_tools.board.finish();
  m_view.transferStateChanged();
  m_hooks.dropsFinished(drops);
  m_view.transferComplete();
  return dropWaited;
}

void TransferDriver::removeMainDictionary() {
  try {
    if (m_tools.files.presence(m_mainDictPath) == Presence::Present) {
      m_tools.files.removeFile(m_mainDictPath);
    }
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"The main dictionary could not be removed: "_s + failure.reason());
  }
}

} // namespace sonorel
