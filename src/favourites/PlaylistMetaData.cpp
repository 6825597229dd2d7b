#include "favourites/PlaylistMetaData.h"

#include "core/state/LogException.h"
#include "favourites/PhotoListBuilding.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qint64 kFirstPlaylistId = 1;

// The next free PlaylistID; a hand-made property file may hold a number instead of a text.
qint64 currentPlaylistId(const Settings &settings) {
  const QString key = u"PlaylistID"_s;
  return settings.contains(key) ? settings.number(key, leadingNumber(settings.text(key))) : kFirstPlaylistId;
}

bool holdsTitles(const std::vector<NewList> &lists) {
  return std::any_of(lists.begin(), lists.end(), [](const NewList &list) { return !list.titles.empty(); });
}

// A product whose name file is missing counts as "Vaultbox 1": what was kept then has titles without a type, and what
// is kept of another model has one.
void fitTo(const PlayerTraits &player, bool photos, std::vector<NewList> &lists) {
  for (NewList &list : lists) {
    const bool holdsAlbums = !photos && colourIndex(list.name) >= 0;
    for (FavouriteTitle &title : list.titles) {
      if (player.isVaultbox1()) {
        title.itemType.reset();
      } else if (!title.itemType) {
        title.itemType = (holdsAlbums ? kItemTypeAlbum : kItemTypeTitle).toString();
      }
    }
  }
}

} // namespace

PlaylistMetaData::PlaylistMetaData(TransferBoard &board, FavouritesMerge &merge, PhotoFavourites &photoFavourites,
                                   Settings &settings, const Session &session, Identifiers &identifiers,
                                   Desktop &desktop, const UnwrittenTools &unwritten, Hooks hooks)
    : m_board(board), m_merge(merge), m_photoFavourites(photoFavourites), m_settings(settings), m_session(session),
      m_identifiers(identifiers), m_desktop(desktop), m_hooks(std::move(hooks)),
      m_unwritten(unwritten, FavouritesKind::Music), m_unwrittenPhotos(unwritten, FavouritesKind::Photos) {}

bool PlaylistMetaData::sendMetaDataForPlaylist(bool photos) {
  try {
    const bool retried = retry(photos, m_hooks.stop()); // as a transfer of its own, before this one
    const bool sent = send(photos);
    return sent && retried;
  } catch (const std::exception &exception) {
    logException(m_desktop, u"sendMetaDataForPlaylist"_s, exception);
    return false;
  }
}

void PlaylistMetaData::beginTransfer() {
  m_owner =
      Owner{productKey(m_session), m_session.hardwareAddress(), m_session.connectedAddress(), playerOf(m_session)};
}

// A product does not become another one because its hardware address cannot be read this time.
bool PlaylistMetaData::isConnectedTo(const Owner &owner) const {
  const QString hardwareAddress = m_session.hardwareAddress();
  if (hardwareAddress.isEmpty() || owner.hardwareAddress.isEmpty()) {
    return m_session.connectedAddress() == owner.address;
  }
  return productKey(m_session) == owner.product;
}

void PlaylistMetaData::keepRecordsOfAnotherProduct() {
  if (m_owner && !isConnectedTo(*m_owner)) {
    keepRecords();
  }
}

void PlaylistMetaData::keepRecords() {
  for (const bool photos : {true, false}) {
    if (!m_owner || !m_board.hasRecords(photos)) {
      continue;
    }
    const std::vector<NewList> lists = listsOf(photos, m_board.records(photos), m_owner->player);
    if (holdsTitles(lists)) {
      unwritten(photos).keep(m_owner->product, lists);
    }
    m_board.clearRecords(photos);
  }
}

bool PlaylistMetaData::hasUnwritten(bool photos) {
  return unwritten(photos).hasAny(productKey(m_session));
}

bool PlaylistMetaData::retryUnwritten(std::stop_token stop) {
  const bool photos = retry(true, stop);
  const bool music = retry(false, stop);
  return photos && music;
}

bool PlaylistMetaData::retry(bool photos, const std::stop_token &stop) {
  const QString product = productKey(m_session);
  if (!unwritten(photos).hasAny(product) || !m_hooks.isConnected()) {
    return true;
  }
  return unwritten(photos).retry(product, [&](std::vector<NewList> lists) {
    fitTo(playerOf(m_session), photos, lists);
    return !stop.stop_requested() && write(photos, lists, MergeTry::Again, stop);
  });
}

bool PlaylistMetaData::write(bool photos, const std::vector<NewList> &lists, MergeTry kind,
                             const std::stop_token &stop) {
  return photos ? m_photoFavourites.makeList1UsingArrays(lists, stop, kind)
                : m_merge.addPlaylistToDictionary(lists, stop, kind);
}

bool PlaylistMetaData::send(bool photos) {
  const QList<PlaylistInfo> records = m_board.records(photos);
  if (records.isEmpty()) {
    return true;
  }
  const QString product = productKey(m_session);
  const std::vector<NewList> lists = listsOf(photos, records, playerOf(m_session));
  if (photos && lists.empty()) {
    return true; // nothing but ends of albums
  }
  const bool anyTransferred = holdsTitles(lists);
  const bool olderOnesWait = unwritten(photos).hasAny(product);
  if (anyTransferred) {
    unwritten(photos).keep(product, lists); // first: whatever dies from here on, they are not lost
  }
  storeNextPlaylistId(lists);
  if (olderOnesWait) {
    // Coming later, an older list would replace the newer one of its name.
    m_desktop.log(u"The playlists were not written: older ones wait before them."_s);
  } else if (m_hooks.isConnected()) {
    if (write(photos, lists, MergeTry::First, m_hooks.stop())) {
      if (anyTransferred) {
        unwritten(photos).forgetLatest(product);
      }
      return true;
    }
  } else {
    m_desktop.log(u"The playlists were not written: the share is not mounted."_s);
  }
  m_board.clearRecords(photos);
  return !anyTransferred;
}

std::vector<NewList> PlaylistMetaData::listsOf(bool photos, const QList<PlaylistInfo> &records,
                                               const PlayerTraits &player) {
  return photos ? pictureLists(records, player) : musicLists(records, player);
}

std::vector<NewList> PlaylistMetaData::musicLists(const QList<PlaylistInfo> &records, const PlayerTraits &player) {
  const PlaylistDetails details = makePlaylistDetailData(records, m_hooks.album, player, m_identifiers);
  m_board.replaceRecords(false, details.records);
  std::vector<NewList> lists = makePlaylistDataArrays(details.records, currentPlaylistId(m_settings), m_identifiers);
  for (NewList &list : lists) {
    list.titles = details.titles.value(list.name);
  }
  return lists;
}

std::vector<NewList> PlaylistMetaData::pictureLists(const QList<PlaylistInfo> &records, const PlayerTraits &player) {
  qint64 first = currentPlaylistId(m_settings);
  if (!player.isVaultbox1()) {
    // Below stand the colour keys. The counter is behind them as soon as a connection has looked at the favourites.
    first = qMax<qint64>(first, kColourKeys + 1);
  }
  return photoLists(records, first, player, m_identifiers);
}

// The counter moves behind the last list; those of pictures end with an album, never with a separator.
void PlaylistMetaData::storeNextPlaylistId(const std::vector<NewList> &lists) {
  if (lists.empty()) {
    return;
  }
  m_settings.set(u"PlaylistID"_s, QString::number(leadingNumber(lists.back().playlistId) + 1));
  try {
    m_settings.save();
  } catch (const Failure &failure) {
    // The counter is made anew from the server's file; a list is not given up for it.
    m_desktop.log(u"The settings could not be written: "_s + failure.reason());
  }
}

} // namespace sonorel
