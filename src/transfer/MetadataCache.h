// The tags of the files of one transfer: each file is read once, however often its names are asked for. The worker's,
// and the controller's while no worker runs.
#pragma once

#include "platform/FileSystem.h"
#include "platform/Metadata.h"

#include <QHash>
#include <QString>

#include <optional>

namespace sonorel {

class MetadataCache {
public:
  // Both must outlive the object.
  MetadataCache(FileSystem &files, Metadata &metadata) : m_files(files), m_metadata(metadata) {}

  // Read again when size or time of the file have changed. nullopt: no reader knows the file.
  [[nodiscard]] std::optional<TrackTags> tags(const QString &path);
  void clear() { m_entries.clear(); }

private:
  struct Entry {
    quint64 size = 0;
    qint64 modifiedSeconds = 0;
    qint32 modifiedNanoseconds = 0;
    std::optional<TrackTags> tags;
  };

  FileSystem &m_files;
  Metadata &m_metadata;
  QHash<QString, Entry> m_entries;
};

} // namespace sonorel
