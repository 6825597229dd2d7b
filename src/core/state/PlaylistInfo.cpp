#include "core/state/PlaylistInfo.h"

namespace sonorel {

PlaylistRecords::PlaylistRecords(QList<PlaylistInfo> records) : m_records(std::move(records)) {
  index();
}

void PlaylistRecords::append(const PlaylistInfo &record) {
  m_bySource[record.sourceSongPath].append(m_records.size());
  m_records.append(record);
}

void PlaylistRecords::append(const QList<PlaylistInfo> &records) {
  m_records.reserve(m_records.size() + records.size());
  for (const PlaylistInfo &record : records) {
    append(record);
  }
}

void PlaylistRecords::removePlaylist(const QString &playlistName) {
  const qsizetype removed =
      m_records.removeIf([&](const PlaylistInfo &record) { return record.playlistName == playlistName; });
  if (removed > 0) {
    index();
  }
}

void PlaylistRecords::clear() {
  m_records.clear();
  m_bySource.clear();
}

void PlaylistRecords::update(const QString &sourceSongPath, const std::function<void(PlaylistInfo &)> &change) {
  const auto places = m_bySource.constFind(sourceSongPath);
  if (places == m_bySource.constEnd()) {
    return;
  }
  for (const qsizetype place : *places) {
    change(m_records[place]);
  }
}

void PlaylistRecords::index() {
  m_bySource.clear();
  m_bySource.reserve(m_records.size());
  for (qsizetype place = 0; place < m_records.size(); ++place) {
    m_bySource[m_records.at(place).sourceSongPath].append(place);
  }
}

} // namespace sonorel
