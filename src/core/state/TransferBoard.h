// What the drop intake (controller's thread) and the transfer worker share: the state of the transfer, the queue,
// the iTunes tracks and the two playlist arrays, all under one lock. A drop is one value that is taken whole or
// refused whole. Values travel as copies; nothing refers into the board. Any thread.
#pragma once

#include "core/state/PlaylistInfo.h"
#include "core/state/TrackTexts.h"

#include <QList>
#include <QStringList>

#include <atomic>
#include <mutex>
#include <optional>

namespace sonorel {

struct QueueEntry {
  enum class Kind { Path, Radio, BookmarkPair };

  Kind kind = Kind::Path;
  QString item;      // path, "@~Radio..." or the bookmark's file name
  QString companion; // BookmarkPair: the bookmark file's full text

  [[nodiscard]] int places() const { return kind == Kind::BookmarkPair ? 2 : 1; } // in `sharedFileQ`
  bool operator==(const QueueEntry &) const = default;
};

// In the lists of what was not transferred: of a radio entry what follows the prefix, else the last path component.
[[nodiscard]] QString shownName(const QueueEntry &entry);

struct Drop {
  QList<QueueEntry> items;
  QStringList tracks;
  std::optional<QString> purgedPlaylist; // records of this name leave the music array first
  QList<PlaylistInfo> musicRecords;
  QList<PlaylistInfo> pictureRecords;
  bool hasVideoOrPicture = false; // `isVideoFilePresentInItunesData`
};

// Aborted: by a sleep of the machine. Nothing is carried any more, but it has not completed.
enum class TransferState { Idle, Running, Ending, Aborted };
enum class DropAnswer {
  Started,  // nothing was carried: the caller starts the worker
  Appended, // the running worker picks it up
  Waiting,  // the worker is ending: becomes the next transfer
  Refused,  // the running transfer is being cancelled: nothing was changed
};

class TransferBoard {
public:
  // --- intake ---
  // The hand-over, in one step.
  [[nodiscard]] DropAnswer offer(const Drop &drop);
  [[nodiscard]] TransferState state() const;
  [[nodiscard]] bool transferComplete() const { return state() == TransferState::Idle; }
  // The worker carries something, or hands in what it has carried.
  [[nodiscard]] bool isCarrying() const;

  // --- flags, read once per item by the worker ---
  // Cancel sets it, a connect clears it (controller's thread); so does a transfer that begins, in offer and, on the
  // worker, in finish.
  std::atomic<bool> isCancel{false};
  std::atomic<bool> manualSleepWasConnected{false}; // written on the controller's thread

  // --- worker ---
  [[nodiscard]] qsizetype count() const;  // entries
  [[nodiscard]] qsizetype places() const; // entries of `sharedFileQ`, a bookmark pair counting twice
  [[nodiscard]] std::optional<QueueEntry> at(qsizetype index) const;
  [[nodiscard]] QList<QueueEntry> entriesFrom(qsizetype index) const;
  [[nodiscard]] std::optional<QString> track(qsizetype index) const;
  // True and Ending when nothing stands at the index any more; false when a drop came meanwhile.
  [[nodiscard]] bool endWhenNothingAt(qsizetype index);
  // Running becomes Ending whatever the queue holds (cancel, disk full, share lost, exception).
  void beginEnding();
  void clearQueue(); // `sharedFileQ` and `iTunesTracks`
  // The end handler's last step: queue emptied, Idle. When a drop waited it becomes the new queue, the state is
  // Running and true is returned: the caller starts the worker again.
  [[nodiscard]] bool finish();
  // The machine sleeps: the queue is kept, Aborted. Returns the drops that have found their end by it.
  [[nodiscard]] quint32 abort();
  // Connect: a transfer that never ended (sleep) counts as complete again.
  void resetToIdle();

  // Position of the worker, for the list after a wake.
  std::atomic<qsizetype> fileIndex{0};

  // The track being transferred, or the last one.
  void setCurrentTrack(const TrackTexts &texts);
  [[nodiscard]] TrackTexts currentTrack() const;

  // --- playlist arrays; photos false: `playListArrayItunes`, true: `playListArrayIphoto` ---
  [[nodiscard]] QList<PlaylistInfo> records(bool photos) const;
  [[nodiscard]] bool hasRecords(bool photos) const;
  void updateRecords(bool photos, const QString &sourceSongPath, const std::function<void(PlaylistInfo &)> &change);
  void replaceRecords(bool photos, const QList<PlaylistInfo> &records);
  void clearRecords(bool photos);

  // `isVideoFilePresentInItunesData`; take clears it.
  [[nodiscard]] bool takeVideoPresent();

  // Drops accepted since the last finish, for the count of unfinished drops. finish moves the waiting ones up.
  [[nodiscard]] quint32 acceptedDrops() const;

private:
  void apply(const Drop &drop);

  mutable std::mutex m_mutex; // guards everything below
  TransferState m_state = TransferState::Idle;
  QList<QueueEntry> m_queue;
  qsizetype m_places = 0;
  QStringList m_tracks;
  PlaylistRecords m_music;
  PlaylistRecords m_pictures;
  bool m_videoPresent = false;
  QList<Drop> m_waiting;
  quint32 m_accepted = 0;
  TrackTexts m_currentTrack;
};

} // namespace sonorel
