// One track of a dropped playlist, and the list of them. The list keeps drop order and finds the records of one
// source path without a walk. Not thread-safe: TransferBoard guards the two lists that are shared.
#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <functional>

namespace sonorel {

struct PlaylistInfo {
  QString playlistName;
  QString sourceSongPath;      // full local path; the key by which a transfer finds the record
  QString sourceSongName;      // declared, set by nobody
  QString destinationSongName; // music: relative to the music folder, "/" written as "@@@@@"; pictures: a path
  QString songTransferFlag;    // "Y" once the file stands on the server, "N" before

  bool operator==(const PlaylistInfo &) const = default;
};

class PlaylistRecords {
public:
  PlaylistRecords() = default;
  explicit PlaylistRecords(QList<PlaylistInfo> records);

  [[nodiscard]] const QList<PlaylistInfo> &all() const { return m_records; }
  [[nodiscard]] bool isEmpty() const { return m_records.isEmpty(); }
  [[nodiscard]] qsizetype size() const { return m_records.size(); }

  void append(const PlaylistInfo &record);
  void append(const QList<PlaylistInfo> &records);
  // Removes every record of that playlist, keeping the order of the rest.
  void removePlaylist(const QString &playlistName);
  void clear();
  // Calls change for each record of the source path, in order. The source path itself must stay.
  void update(const QString &sourceSongPath, const std::function<void(PlaylistInfo &)> &change);

private:
  void index();

  QList<PlaylistInfo> m_records;
  QHash<QString, QList<qsizetype>> m_bySource;
};

} // namespace sonorel
