// Lists of finished transfers that could not be written to a product's favourites, kept for another try while that
// product is connected. In memory only. Not thread-safe: the worker's, and the controller's while no worker runs.
#pragma once

#include "favourites/FavouritesModel.h"

#include <QString>

#include <functional>
#include <vector>

namespace sonorel {

class UnwrittenPlaylists {
public:
  // The lists of one transfer.
  void keep(const QString &product, std::vector<NewList> lists);
  [[nodiscard]] bool hasAny(const QString &product) const;
  // Writes what is kept for the product, oldest first, and forgets what was written. False, and the rest waits on, at
  // the first one that write refuses.
  [[nodiscard]] bool retry(const QString &product, const std::function<bool(const std::vector<NewList> &)> &write);

private:
  struct Kept {
    QString product;
    std::vector<NewList> lists;
  };
  std::vector<Kept> m_kept; // oldest first
};

} // namespace sonorel
