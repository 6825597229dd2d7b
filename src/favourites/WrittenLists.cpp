#include "favourites/WrittenLists.h"

#include "core/state/ShareLayout.h"

#include <QSet>

#include <algorithm>

namespace sonorel {

namespace {

// Lists are known by their own GUIDs, what was put on a colour key by those of its titles: by any of them, because
// albums that stood there already are left out, and the oldest go when a key is full.
struct StoredGuids {
  QSet<QByteArray> lists;
  QSet<QByteArray> titlesOnColours;

  explicit StoredGuids(const FavouriteLists &stored) {
    for (const FavouriteList &list : stored) {
      lists.insert(list.guid);
      if (colourIndex(list.playlistName) >= 0 || colourIndex(list.nameAsRead.value_or(QString())) >= 0) {
        for (const FavouriteTitle &title : list.songs) {
          titlesOnColours.insert(title.guid);
        }
      }
    }
  }

  [[nodiscard]] bool hold(const NewList &added) const {
    return lists.contains(added.guid) ||
           (colourIndex(added.name) >= 0 &&
            std::any_of(added.titles.begin(), added.titles.end(),
                        [this](const FavouriteTitle &title) { return titlesOnColours.contains(title.guid); }));
  }
};

} // namespace

std::vector<NewList> stillToWrite(std::vector<NewList> newLists, const FavouriteLists &stored, MergeTry kind) {
  if (kind == MergeTry::Again) {
    const StoredGuids guids(stored);
    std::erase_if(newLists, [&](const NewList &added) { return guids.hold(added); });
  }
  return newLists;
}

} // namespace sonorel
