#include "core/state/TransferBoard.h"

#include "core/state/ShareLayout.h"

#include <utility>

namespace sonorel {

QString shownName(const QueueEntry &entry) {
  if (entry.kind == QueueEntry::Kind::Radio) {
    return entry.item.mid(kRadioPrefix.size());
  }
  return entry.item.mid(entry.item.lastIndexOf(u'/') + 1);
}

// --- intake ---

DropAnswer TransferBoard::offer(const Drop &drop) {
  const std::lock_guard lock(m_mutex);
  if (m_state == TransferState::Idle || m_state == TransferState::Aborted) {
    isCancel = false;
    fileIndex = 0;
    // Drops whose turn never came because the transfer before them was broken off by sleep.
    for (const Drop &waiting : std::exchange(m_waiting, {})) {
      apply(waiting);
      ++m_accepted;
    }
    apply(drop);
    ++m_accepted;
    m_state = TransferState::Running;
    return DropAnswer::Started;
  }
  if (isCancel) {
    return DropAnswer::Refused;
  }
  if (m_state == TransferState::Ending) {
    m_waiting.append(drop);
    return DropAnswer::Waiting;
  }
  apply(drop);
  ++m_accepted;
  return DropAnswer::Appended;
}

TransferState TransferBoard::state() const {
  const std::lock_guard lock(m_mutex);
  return m_state;
}

bool TransferBoard::isCarrying() const {
  const TransferState now = state();
  return now == TransferState::Running || now == TransferState::Ending;
}

void TransferBoard::apply(const Drop &drop) {
  m_queue.append(drop.items);
  for (const QueueEntry &entry : drop.items) {
    m_places += entry.places();
  }
  m_tracks.append(drop.tracks);
  if (drop.purgedPlaylist) {
    m_music.removePlaylist(*drop.purgedPlaylist);
  }
  m_music.append(drop.musicRecords);
  m_pictures.append(drop.pictureRecords);
  m_videoPresent = m_videoPresent || drop.hasVideoOrPicture;
}

// --- worker ---

qsizetype TransferBoard::count() const {
  const std::lock_guard lock(m_mutex);
  return m_queue.size();
}

qsizetype TransferBoard::places() const {
  const std::lock_guard lock(m_mutex);
  return m_places;
}

std::optional<QueueEntry> TransferBoard::at(qsizetype index) const {
  const std::lock_guard lock(m_mutex);
  if (index < 0 || index >= m_queue.size()) {
    return std::nullopt;
  }
  return m_queue.at(index);
}

QList<QueueEntry> TransferBoard::entriesFrom(qsizetype index) const {
  const std::lock_guard lock(m_mutex);
  return m_queue.mid(qMax<qsizetype>(index, 0));
}

std::optional<QString> TransferBoard::track(qsizetype index) const {
  const std::lock_guard lock(m_mutex);
  if (index < 0 || index >= m_tracks.size()) {
    return std::nullopt;
  }
  return m_tracks.at(index);
}

bool TransferBoard::endWhenNothingAt(qsizetype index) {
  const std::lock_guard lock(m_mutex);
  if (index < m_queue.size()) {
    return false;
  }
  if (m_state == TransferState::Running) {
    m_state = TransferState::Ending;
  }
  return true;
}

void TransferBoard::beginEnding() {
  const std::lock_guard lock(m_mutex);
  if (m_state == TransferState::Running) {
    m_state = TransferState::Ending;
  }
}

void TransferBoard::clearQueue() {
  const std::lock_guard lock(m_mutex);
  m_queue.clear();
  m_places = 0;
  m_tracks.clear();
}

bool TransferBoard::finish() {
  const std::lock_guard lock(m_mutex);
  m_queue.clear();
  m_places = 0;
  m_tracks.clear();
  m_accepted = 0;
  m_state = TransferState::Idle;
  if (m_waiting.isEmpty()) {
    return false;
  }
  isCancel = false;
  fileIndex = 0;
  for (const Drop &drop : std::exchange(m_waiting, {})) {
    apply(drop);
    ++m_accepted;
  }
  m_state = TransferState::Running;
  return true;
}

quint32 TransferBoard::abort() {
  const std::lock_guard lock(m_mutex);
  m_state = TransferState::Aborted;
  return std::exchange(m_accepted, 0);
}

void TransferBoard::resetToIdle() {
  const std::lock_guard lock(m_mutex);
  m_accepted = 0;
  m_state = TransferState::Idle;
}

// --- playlist arrays ---

void TransferBoard::setCurrentTrack(const TrackTexts &texts) {
  const std::lock_guard lock(m_mutex);
  m_currentTrack = texts;
}

TrackTexts TransferBoard::currentTrack() const {
  const std::lock_guard lock(m_mutex);
  return m_currentTrack;
}

QList<PlaylistInfo> TransferBoard::records(bool photos) const {
  const std::lock_guard lock(m_mutex);
  return (photos ? m_pictures : m_music).all();
}

bool TransferBoard::hasRecords(bool photos) const {
  const std::lock_guard lock(m_mutex);
  return !(photos ? m_pictures : m_music).isEmpty();
}

void TransferBoard::updateRecords(bool photos, const QString &sourceSongPath,
                                  const std::function<void(PlaylistInfo &)> &change) {
  const std::lock_guard lock(m_mutex);
  (photos ? m_pictures : m_music).update(sourceSongPath, change);
}

void TransferBoard::replaceRecords(bool photos, const QList<PlaylistInfo> &records) {
  const std::lock_guard lock(m_mutex);
  (photos ? m_pictures : m_music) = PlaylistRecords(records);
}

void TransferBoard::clearRecords(bool photos) {
  const std::lock_guard lock(m_mutex);
  (photos ? m_pictures : m_music).clear();
}

bool TransferBoard::takeVideoPresent() {
  const std::lock_guard lock(m_mutex);
  return std::exchange(m_videoPresent, false);
}

quint32 TransferBoard::acceptedDrops() const {
  const std::lock_guard lock(m_mutex);
  return m_accepted;
}

} // namespace sonorel
