#include "favourites/AlbumNames.h"

namespace sonorel {

QString AlbumNames::albumOf(const QString &sourceSongPath) const {
  const std::optional<TrackTags> tags = m_tags(sourceSongPath);
  if (!tags) {
    m_desktop.log(QStringLiteral("ref is null"));
    return {};
  }
  return tags->album;
}

} // namespace sonorel
