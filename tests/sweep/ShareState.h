// What must be equal after the same drops, and what must hold at every instant.
#pragma once

#include "World.h"

#include <QHash>
#include <QMap>
#include <QStringList>

namespace sonorel::test {

// Files of the share by their paths, without the message files and names beginning ".sonorel-"; favourites and the
// colour copy as text without GUIDs and numbers, lists in the order of their names.
[[nodiscard]] QMap<QString, QByteArray> shareState(World &world);
// The server's favourites as they stand on its disk, as such a text.
[[nodiscard]] QByteArray favouritesText(const World &world);
// The differences, for a failure's text; empty when equal.
[[nodiscard]] std::string difference(const QMap<QString, QByteArray> &expected,
                                     const QMap<QString, QByteArray> &actual);
// The user's own files: bytes and times.
[[nodiscard]] QMap<QString, QByteArray> localState(const World &world);

// Watches the favourites: at every operation a complete file, with all that the user had, is to stand under one of
// its known names; one of photos too when there was one.
class FavouritesWatch {
public:
  explicit FavouritesWatch(World &world);
  // Empty, or what is wrong now.
  [[nodiscard]] std::string check();

private:
  using Kind = bool (FavouritesWatch::*)(const QByteArray &) const;
  [[nodiscard]] bool holdsAllLists(const QByteArray &bytes) const;
  [[nodiscard]] bool holdsAllPhotos(const QByteArray &bytes) const;
  [[nodiscard]] std::string checkFile(const QString &path, Kind isComplete);
  [[nodiscard]] bool isComplete(const QByteArray &bytes, Kind kind);

  World &m_world;
  const QStringList m_photos; // at the beginning
  QHash<QByteArray, bool> m_known;
};

// "album: picture", for every picture of the server's photo favourites.
[[nodiscard]] QStringList photoTitles(const World &world);
// Those whose picture is not on the mounted share whole.
[[nodiscard]] QStringList photosWithoutFile(World &world);
// Pictures that an exporter has left half.
[[nodiscard]] QStringList leftArtwork(World &world);

// The titles of the server's favourites whose file (for an album: none of whose files) is not on the mounted share
// whole, except those of the old lists.
[[nodiscard]] QStringList titlesWithoutFile(World &world);

} // namespace sonorel::test
