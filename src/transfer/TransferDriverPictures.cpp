// The driver's branches for pictures and films.
#include "core/state/DockImages.h"
#include "transfer/TransferDriver.h"

#include <QScopeGuard>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

TransferDriver::After TransferDriver::carryVideo(const Item &item) {
  const auto clearFlag = qScopeGuard([this] { m_transfer.setVideoFileType(false); });
  try {
    return whenItFits(item, &TransferDriver::copyVideo);
  } catch (const std::exception &exception) {
    return exceptionInBranch(exception);
  }
}

// No extension leads here: films go the way of pictures. A film alone does not earn the closing line, and one that
// could not be copied is not told.
TransferDriver::After TransferDriver::copyVideo(const Item &item) {
  if (!sourceFacts(item.path, Links::Follow)) {
    m_messages.reportMissing(item.path);
    return After::NextItem;
  }
  if (m_transfer.transferVideoFile(item.path)) {
    m_transferred.videoFileTransferred = true;
    return After::NextItem;
  }
  if (m_tools.board.manualSleepWasConnected) {
    return After::Slept;
  }
  return isShareThere() || m_tools.board.isCancel ? After::NextItem : shareLost(kConnectImage);
}

TransferDriver::After TransferDriver::carryPicture(const Item &item) {
  const auto clearFlag = qScopeGuard([this] { m_transfer.setPhotoOrVideoFileType(false); });
  try {
    return whenItFits(item, &TransferDriver::copyPicture);
  } catch (const std::exception &exception) {
    return exceptionInBranch(exception);
  }
}

TransferDriver::After TransferDriver::copyPicture(const Item &item) {
  if (!sourceFacts(item.path, Links::Follow)) {
    m_messages.reportMissing(item.path);
    return After::NextItem;
  }
  if (m_transfer.transferPhotoOrVideoFile(item.path)) {
    m_transferred.photoFileTransferred = true;
    m_showTransferCompleteMessage = true;
    return After::NextItem;
  }
  if (m_tools.board.manualSleepWasConnected) {
    return After::Slept;
  }
  if (!isShareThere() && !m_tools.board.isCancel) {
    return shareLost(kConnectImage);
  }
  if (m_transfer.isPictureOnTheServer(item.path)) {
    m_showTransferCompleteMessage = true;
  } else {
    m_messages.reportFailedCopy(item.name);
  }
  return After::NextItem;
}

} // namespace sonorel
