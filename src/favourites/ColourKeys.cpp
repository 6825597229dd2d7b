#include "favourites/ColourKeys.h"

#include "core/state/LogException.h"
#include "core/state/ShareLayout.h"

#include <algorithm>

namespace sonorel {

namespace {

QString idOfKey(int index) {
  return QString::number(index + 1);
}

// The first list with that ID.
FavouriteLists::iterator holderOf(FavouriteLists &lists, int index) {
  const QString id = idOfKey(index);
  return std::find_if(lists.begin(), lists.end(), [&](const FavouriteList &list) { return list.playlistId == id; });
}

bool hasAllKeys(FavouriteLists &lists) {
  for (int index = 0; index < kColourKeys; ++index) {
    if (holderOf(lists, index) == lists.end()) {
      return false;
    }
  }
  return true;
}

} // namespace

bool isColourKeyId(const QString &playlistId) {
  return playlistId.size() == 1 && playlistId.at(0) >= u'1' && playlistId.at(0) <= u'4';
}

ColourGuids colourGuids(Settings &settings, Identifiers &identifiers, Desktop &desktop) {
  ColourGuids guids;
  bool made = false;
  for (int index = 0; index < kColourKeys; ++index) {
    const QString key = QStringLiteral("CFLGUID") + colourName(index);
    QByteArray guid = settings.data(key);
    if (guid.size() != kGuidSize) {
      guid = identifiers.generateUUIDBytes();
      settings.set(key, guid);
      made = true;
    }
    guids.at(static_cast<std::size_t>(index)) = guid;
  }
  if (made) {
    try {
      settings.save();
    } catch (const std::exception &e) {
      logException(desktop, QStringLiteral("createCFLEntriesIfMissing"), e);
    }
  }
  return guids;
}

FavouriteList colourKeyList(int index, const ColourGuids &guids) {
  FavouriteList key;
  key.playlistName = colourName(index);
  key.playlistId = idOfKey(index);
  key.locationId = kOwnLocationId.toString();
  key.guid = guids.at(static_cast<std::size_t>(index));
  return key;
}

bool createCFLEntriesIfMissing(FavouriteLists &lists, const ColourGuids &guids) {
  if (hasAllKeys(lists)) {
    return false;
  }
  FavouriteLists repaired;
  repaired.reserve(lists.size() + kColourKeys);
  for (int index = 0; index < kColourKeys; ++index) {
    repaired.push_back(colourKeyList(index, guids));
  }
  std::move(lists.begin(), lists.end(), std::back_inserter(repaired));
  lists = std::move(repaired);
  return true;
}

bool moveColourKeysToFront(FavouriteLists &lists) {
  if (!hasAllKeys(lists)) {
    return false;
  }
  bool changed = false;
  for (int index = 0; index < kColourKeys; ++index) {
    const auto holder = holderOf(lists, index);
    const auto place = lists.begin() + index;
    if (holder != place) {
      std::rotate(place, holder, holder + 1);
      changed = true;
    }
  }
  return changed;
}

} // namespace sonorel
