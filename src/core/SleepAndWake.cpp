#include "core/SleepAndWake.h"

#include "core/state/DockImages.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

SleepAndWake::SleepAndWake(FileSystem &files, Strings &strings, MessageLog &log, TransferBoard &board, View &view,
                           QString share, Hooks hooks)
    : m_files(files), m_strings(strings), m_log(log), m_board(board), m_view(view), m_share(std::move(share)),
      m_hooks(std::move(hooks)) {}

void SleepAndWake::powerMessage(PowerMessage message) {
  if (message == PowerMessage::CanSystemSleep) {
    if (m_countCanSleepEvent++ == 0) {
      m_wasConnected = m_hooks.isConnected();
    }
    m_hooks.onDisconnect();
  } else if (m_countCanSleepEvent == 0) {
    // A share under a transfer that does not answer just now is mounted as well.
    m_board.manualSleepWasConnected = m_hooks.isConnected() || m_board.isCarrying();
    if (m_board.manualSleepWasConnected) {
      m_hooks.endTransfer(kPatienceWithTransfer);
    }
    m_hooks.onDisconnect();
  }
}

void SleepAndWake::afterWakeup() {
  m_view.stopPulse();
  if (m_wasConnected && shareIsGone()) {
    m_view.selectTab(Tab::Connection);
    m_wasConnected = false;
  } else if (m_board.manualSleepWasConnected) {
    m_strings.reload();
    listLeftOver();
    m_board.clearQueue();
    m_board.manualSleepWasConnected = false;
  } else {
    m_view.selectTab(Tab::Connection);
  }
  m_view.setDockIcon(kDisconnectImage);
  m_view.setProgressBar(0);
  m_countCanSleepEvent = 0;
}

// An answer that does not come means that it is gone for this purpose: nothing is written on the strength of it.
bool SleepAndWake::shareIsGone() {
  const auto volume = m_files.volume(m_share);
  return !volume || volume->mountRoot != m_share || m_files.presence(m_share) != Presence::Present;
}

void SleepAndWake::listLeftOver() {
  m_log.appendSeparator();
  m_log.append(m_strings.text(u"Message1"_s) + u'\n');
  const QList<QueueEntry> pending = m_board.entriesFrom(m_board.fileIndex);
  for (const QueueEntry &entry : pending) {
    m_log.append(shownName(entry) + u'\n');
  }
  if (!pending.isEmpty()) {
    m_log.show();
  }
  m_view.selectTab(m_board.count() > 0 ? Tab::Transfer : Tab::Connection);
}

} // namespace sonorel
