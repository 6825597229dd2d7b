// The favourites in memory: a vector of lists in List1 order. The files (docs/formats/favourites.md) and the main
// dictionary's property list are only its edges.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace sonorel {

struct FavouriteTitle {
  QString songPath;                // "SongPath": "@@@@@" or a backslash between folders, without the server's prefix
  QByteArray checkSum;             // 36 bytes when made here
  QByteArray guid;                 // 16 bytes
  std::optional<QString> itemType; // "1" title, "2" album; none for "Vaultbox 1"

  bool operator==(const FavouriteTitle &) const = default;
};

struct FavouriteList {
  QString playlistName; // as the main dictionary holds it: framed by "@~" unless a colour key
  QString playlistId;   // decimal text
  QString locationId;
  QByteArray guid;
  std::vector<FavouriteTitle> songs;
  // The name as the server's file holds it, while it is unchanged since it was read: written back as it was.
  std::optional<QString> nameAsRead;

  bool operator==(const FavouriteList &) const = default;
};

using FavouriteLists = std::vector<FavouriteList>;

// What list building hands to the merge: the new lists in order. A list without titles keeps its number and is
// dropped.
struct NewList {
  QString name;       // a colour key by its bare name
  QString playlistId; // the number list building gave it; the merge gives its own
  QString locationId = QStringLiteral("6");
  QByteArray guid;
  std::vector<FavouriteTitle> titles;
};

// What of the connected product decides bytes.
struct PlayerTraits {
  QString deviceName;
  bool utf8 = false; // `isAU5UTF8Compliant` is "YES": UTF-8 text and the 1.3 tags

  [[nodiscard]] bool isVaultbox1() const { return deviceName == QStringLiteral("Vaultbox 1"); }
  [[nodiscard]] bool isAuralis5() const { return deviceName == QStringLiteral("Auralis 5"); }
};

} // namespace sonorel
