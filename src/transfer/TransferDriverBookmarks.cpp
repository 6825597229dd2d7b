// The driver's branch for bookmarks.
#include "core/state/DockImages.h"
#include "core/state/LogException.h"
#include "transfer/BookmarkNames.h"
#include "transfer/TransferDriver.h"

#include <QScopeGuard>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr QStringView kFeedScheme = u"feed";
constexpr QStringView kFileScheme = u"file";
constexpr qsizetype kExtensionLength = 4; // ".url"

} // namespace

TransferDriver::After TransferDriver::carryBookmark(const QueueEntry &entry, const Item &item) {
  const auto clearFlag = qScopeGuard([this] { m_transfer.setBookmarkFileType(false); });
  try {
    return entry.kind == QueueEntry::Kind::BookmarkPair ? writeBookmark(entry)
                                                        : whenItFits(item, &TransferDriver::copyBookmark);
  } catch (const std::exception &exception) {
    logException(m_tools.desktop, u"transferToVaultbox"_s, exception);
    if (m_tools.board.manualSleepWasConnected) {
      return After::Slept;
    }
    m_isNetworkAlive = m_hooks.isConnected();
    return m_isNetworkAlive ? After::NextItem : shareLost(kConnectImage);
  }
}

// A bookmark that was there before counts, and one that could not be made a ".url" file does too.
TransferDriver::After TransferDriver::copyBookmark(const Item &item) {
  if (!m_transfer.transferBookmark(item.path)) {
    if (m_tools.board.manualSleepWasConnected) {
      return After::Slept;
    }
    if (!isShareThere() && !m_tools.board.isCancel) {
      return shareLost(kConnectImage);
    }
  }
  m_showTransferCompleteMessage = true;
  return After::NextItem;
}

TransferDriver::After TransferDriver::writeBookmark(const QueueEntry &entry) {
  const QString scheme = schemeOf(entry.companion);
  if (scheme == kFeedScheme || scheme == kFileScheme) {
    const QString name = scheme == kFileScheme ? entry.item.chopped(kExtensionLength) : entry.item;
    m_messages.showOnTab(m_messages.text(u"Message5"_s, name));
    return After::NextItem;
  }
  if (m_transfer.writeBookmark(entry.item, entry.companion)) {
    m_showTransferCompleteMessage = true;
    return After::NextItem;
  }
  return m_tools.board.manualSleepWasConnected ? After::Slept : bookmarkNotWritten(entry.item);
}

TransferDriver::After TransferDriver::bookmarkNotWritten(const QString &name) {
  m_tools.board.beginEnding(); // a drop from here on waits
  m_messages.showWithRemainingList(m_messages.text(u"Message10"_s, name));
  m_view.windowFrontCentre();
  m_messages.setProgress(100);
  m_view.setDockIcon(kConnectImage);
  return After::Ending;
}

} // namespace sonorel
