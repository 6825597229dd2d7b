// Lists of transfers that are not known to stand in a product's favourites: each transfer's wait here from
// before their first try until they stand there, over the end of the program too. One file for each transfer, beside
// the backup of the product's favourites. What the client's disk refuses is logged and waits in memory only.
// Not thread-safe: the worker's, and the controller's while no worker runs. Read docs/formats/favourites.md.
#pragma once

#include "favourites/FavouritesFormat.h"
#include "favourites/FavouritesModel.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <QString>

#include <deque>
#include <functional>
#include <map>
#include <vector>

namespace sonorel {

struct UnwrittenTools {
  FileSystem &files;
  PropertyLists &propertyLists;
  Desktop &desktop;
  QString backupFolder; // the one of FavouritesRewrite
};

class UnwrittenPlaylists {
public:
  // What the tools refer to must outlive the object.
  UnwrittenPlaylists(UnwrittenTools tools, FavouritesKind kind);

  // The lists of one transfer; on the disk when this returns.
  void keep(const QString &product, std::vector<NewList> lists);
  // What was kept last for the product stands in its favourites.
  void forgetLatest(const QString &product);
  [[nodiscard]] bool hasAny(const QString &product);
  // Writes what is kept for the product, oldest first, and forgets what was written. False, and the rest waits on, at
  // the first one that write refuses.
  [[nodiscard]] bool retry(const QString &product, const std::function<bool(const std::vector<NewList> &)> &write);

private:
  struct Transfer {
    int number = 0;       // of its file
    bool hasFile = false; // none while it is not known what stands on the disk
    std::vector<NewList> lists;
  };
  struct Kept {
    std::deque<Transfer> transfers; // oldest first
    int lastNumber = 0;
    bool isRead = false; // what stands on the disk is known
  };

  // What is kept for the product, read from the disk at the first time.
  [[nodiscard]] Kept &keptFor(const QString &product);
  void read(const QString &product, Kept &kept);
  [[nodiscard]] std::vector<NewList> readTransfer(const QString &path);
  void write(const QString &product, const Transfer &transfer);
  void remove(const QString &product, const Transfer &transfer);
  [[nodiscard]] QString pathOf(const QString &product, int number) const;

  UnwrittenTools m_tools;
  QString m_namePrefix; // "NetMusicFavorites.orv.unwritten-"
  std::map<QString, Kept> m_products;
};

} // namespace sonorel
