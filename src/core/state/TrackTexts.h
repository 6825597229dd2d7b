// Artists, album and title of a track as they stand in the name that it gets on the server; empty when the tag is
// missing. A plain value.
#pragma once

#include <QString>

namespace sonorel {

struct TrackTexts {
  QString authors;
  QString album;
  QString title;

  bool operator==(const TrackTexts &) const = default;
};

} // namespace sonorel
