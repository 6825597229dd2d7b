// Carries the queue onto the share, item by item, and tells the server at the end. transferToVaultbox is the worker's
// body, a plain blocking function over interfaces: it ends at the end of the queue, on cancel, when the share is lost
// or full, when the machine goes to sleep, and when the program quits (its stop token). Everything that a person sees
// goes through View, without waiting. startTransfer is for the controller's thread, isAtWork for any,
// the rest for the worker's. Read next: Transfer.h, TransferBoard.h.
#pragma once

#include "core/state/Session.h"
#include "core/state/View.h"
#include "link/ClientMessages.h"
#include "platform/Worker.h"
#include "transfer/Transfer.h"
#include "transfer/TransferMessages.h"

#include <atomic>
#include <functional>

namespace sonorel {

class TransferDriver {
public:
  // What the driver asks of other roles.
  struct Hooks {
    std::function<bool()> isConnected; // of a fresh connection
    std::function<void()> enableCFLLimits;
    std::function<bool(bool photos)> sendMetaDataForPlaylist; // false: something was not written
    std::function<void(const TransferredKinds &)> sendMetaDataForTransferredFiles;
    std::function<void(quint32)> dropsFinished;
    // Lists of an earlier transfer wait for another try.
    std::function<bool(bool photos)> hasUnwrittenPlaylists = [](bool) { return false; };
  };

  // All references must outlive the object. mainDictPath is removed at the end of every transfer.
  TransferDriver(const TransferTools &tools, Transfer &transfer, MessageLog &log, Strings &strings,
                 const Session &session, View &view, Worker &worker, ShareFolders folders, QString mainDictPath,
                 Hooks hooks);

  // After the board has taken a drop that started a transfer. Returns at once.
  void startTransfer();
  void transferToVaultbox(std::stop_token stop);
  // From startTransfer until the worker has done its last step. Any thread.
  [[nodiscard]] bool isAtWork() const { return m_isAtWork; }
  // The latest transfer ended with a drop that waited and will not be carried; the log says so. True once. Any
  // thread.
  [[nodiscard]] bool takeToldOfWaitingDrop() { return m_hasToldOfWaitingDrop.exchange(false); }

  // The source fits into the share's free space. Looks whether the share is there at all.
  [[nodiscard]] bool isVaultboxDiskFree(const QString &sourcePath);
  [[nodiscard]] bool checkAppleLossless(const QString &path);

private:
  enum class After { NextItem, Ending, Slept };
  struct Item {
    QString path;
    QString extension;
    QString name; // last path component
    bool isAppleLossless = false;
    int hierarchyFlag = 0;
  };

  [[nodiscard]] bool runTransfer();
  // True when it is to be carried now; one that has no turn any more is ended.
  [[nodiscard]] bool settleWaitingDrop(bool dropWaited);
  [[nodiscard]] bool carryQueue(); // false: the machine went to sleep
  [[nodiscard]] After carryItem(const QueueEntry &entry);
  [[nodiscard]] After carryByType(const QueueEntry &entry, const Item &item);
  [[nodiscard]] After whenItFits(const Item &item, After (TransferDriver::*copy)(const Item &));
  [[nodiscard]] bool isShareThere();
  // A source that cannot be looked at is as good as missing: nothing on the share hangs on it.
  [[nodiscard]] std::optional<FileAttributes> sourceFacts(const QString &path, Links links);
  void rejectItem(const Item &item);
  void showProgressBehind(const QueueEntry &entry);

  // --- branches: TransferDriverSounds.cpp, TransferDriverPictures.cpp, TransferDriverBookmarks.cpp ---
  [[nodiscard]] After carrySound(const Item &item);
  [[nodiscard]] After copySound(const Item &item);
  [[nodiscard]] bool isToldTooSmall(const Item &item, quint64 size);
  [[nodiscard]] QString nameTrack(const Item &item);
  [[nodiscard]] bool isAlreadyOnTheServer(const Item &item);
  [[nodiscard]] QStringList serverCandidates(const Item &item);
  [[nodiscard]] After carryVideo(const Item &item);
  [[nodiscard]] After copyVideo(const Item &item);
  [[nodiscard]] After carryPicture(const Item &item);
  [[nodiscard]] After copyPicture(const Item &item);
  [[nodiscard]] After carryBookmark(const QueueEntry &entry, const Item &item);
  [[nodiscard]] After copyBookmark(const Item &item);
  [[nodiscard]] After writeBookmark(const QueueEntry &entry);
  After bookmarkNotWritten(const QString &name);

  // --- ways out: TransferDriverEndings.cpp ---
  After shareLost(const QString &iconImageType);
  After diskFull();
  After exceptionInBranch(const std::exception &exception);
  void endForSleep();
  void endTransfer();
  void sendPlaylists();
  // Both: true when a drop waited and has become the next transfer of this worker. Looking at the board afterwards
  // would not tell: a drop that came later has a worker of its own.
  [[nodiscard]] bool finishTransferHandler();
  [[nodiscard]] bool cleanUpAfterException(const std::exception &exception);
  void removeMainDictionary();

  TransferTools m_tools;
  Transfer &m_transfer;
  const Session &m_session;
  View &m_view;
  TransferMessages m_messages;
  Worker &m_worker;
  const ShareFolders m_folders;
  const QString m_mainDictPath;
  Hooks m_hooks;

  std::atomic<bool> m_isAtWork{false};
  std::atomic<bool> m_hasToldOfWaitingDrop{false};

  // One transfer; worker thread.
  std::stop_token m_stop;
  TransferredKinds m_transferred;
  bool m_showTransferCompleteMessage = false;
  bool m_isNetworkAlive = false;
  qsizetype m_trackCounter = 0;
  qsizetype m_place = 0; // of the current item in `sharedFileQ`, where a bookmark pair takes two
};

} // namespace sonorel
