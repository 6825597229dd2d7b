// Tags of media files. Blocks on the disk; any thread.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace sonorel {

struct TrackTags {
  QStringList authors; // kMDItemAuthors: every artist value in file order, none empty
  QString album;       // kMDItemAlbum; empty: no such attribute
  QString title;       // kMDItemTitle; empty: no such attribute
  QStringList codecs;  // kMDItemCodecs: "Apple Lossless", "AAC", ...; empty when unknown
};

class Metadata {
public:
  virtual ~Metadata() = default;
  // nullopt when the file cannot be opened or no reader knows its format; a readable file without tags gives
  // empty values. Only regular files are opened.
  [[nodiscard]] virtual std::optional<TrackTags> read(const QString &path) = 0;
};

} // namespace sonorel
