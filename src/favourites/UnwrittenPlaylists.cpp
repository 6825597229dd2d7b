#include "favourites/UnwrittenPlaylists.h"

#include <algorithm>

namespace sonorel {

void UnwrittenPlaylists::keep(const QString &product, std::vector<NewList> lists) {
  m_kept.push_back({product, std::move(lists)});
}

bool UnwrittenPlaylists::hasAny(const QString &product) const {
  return std::any_of(m_kept.begin(), m_kept.end(), [&](const Kept &kept) { return kept.product == product; });
}

bool UnwrittenPlaylists::retry(const QString &product,
                               const std::function<bool(const std::vector<NewList> &)> &write) {
  for (auto kept = m_kept.begin(); kept != m_kept.end();) {
    if (kept->product != product) {
      ++kept;
      continue;
    }
    if (!write(kept->lists)) {
      return false;
    }
    kept = m_kept.erase(kept);
  }
  return true;
}

} // namespace sonorel
