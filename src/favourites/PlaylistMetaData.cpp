#include "favourites/PlaylistMetaData.h"

#include "core/state/Report.h"
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

} // namespace

PlaylistMetaData::PlaylistMetaData(TransferBoard &board, FavouritesMerge &merge, PhotoFavourites &photoFavourites,
                                   Settings &settings, const Session &session, Identifiers &identifiers,
                                   Desktop &desktop, Hooks hooks)
    : m_board(board), m_merge(merge), m_photoFavourites(photoFavourites), m_settings(settings), m_session(session),
      m_identifiers(identifiers), m_desktop(desktop), m_hooks(std::move(hooks)) {}

bool PlaylistMetaData::sendMetaDataForPlaylist(bool photos) {
  try {
    const bool retried = retry(photos); // as a transfer of its own, before this one
    const bool sent = send(photos);
    return sent && retried;
  } catch (const std::exception &exception) {
    logException(m_desktop, u"sendMetaDataForPlaylist"_s, exception);
    return false;
  }
}

bool PlaylistMetaData::hasUnwritten(bool photos) const {
  return (photos ? m_unwrittenPhotos : m_unwritten).hasAny(productKey(m_session));
}

bool PlaylistMetaData::retryUnwritten() {
  const bool photos = retry(true);
  const bool music = retry(false);
  return photos && music;
}

bool PlaylistMetaData::retry(bool photos) {
  const QString product = productKey(m_session);
  if (!unwritten(photos).hasAny(product) || !m_hooks.isConnected()) {
    return true;
  }
  return unwritten(photos).retry(
      product, [&](const std::vector<NewList> &lists) { return write(photos, lists, MergeTry::Again); });
}

bool PlaylistMetaData::write(bool photos, const std::vector<NewList> &lists, MergeTry kind) {
  return photos ? m_photoFavourites.makeList1UsingArrays(lists, m_hooks.stop(), kind)
                : m_merge.addPlaylistToDictionary(lists, m_hooks.stop(), kind);
}

bool PlaylistMetaData::send(bool photos) {
  const QList<PlaylistInfo> records = m_board.records(photos);
  if (records.isEmpty()) {
    return true;
  }
  const QString product = productKey(m_session);
  std::vector<NewList> lists = photos ? pictureLists(records) : musicLists(records);
  if (photos && lists.empty()) {
    return true; // nothing but ends of albums
  }
  if (m_hooks.isConnected()) {
    if (write(photos, lists, MergeTry::First)) {
      return true;
    }
  } else {
    m_desktop.log(u"The playlists were not written: the share is not mounted."_s);
  }
  m_board.clearRecords(photos);
  if (std::all_of(lists.begin(), lists.end(), [](const NewList &list) { return list.titles.empty(); })) {
    return true; // nothing was transferred
  }
  unwritten(photos).keep(product, std::move(lists));
  return false;
}

std::vector<NewList> PlaylistMetaData::musicLists(const QList<PlaylistInfo> &records) {
  const PlaylistDetails details = makePlaylistDetailData(records, m_hooks.album, playerOf(m_session), m_identifiers);
  m_board.replaceRecords(false, details.records);
  const qint64 first = currentPlaylistId(m_settings);
  std::vector<NewList> lists = makePlaylistDataArrays(details.records, first, m_identifiers);
  for (NewList &list : lists) {
    list.titles = details.titles.value(list.name);
  }
  storeNextPlaylistId(first + static_cast<qint64>(lists.size()));
  return lists;
}

std::vector<NewList> PlaylistMetaData::pictureLists(const QList<PlaylistInfo> &records) {
  const qint64 first = currentPlaylistId(m_settings);
  std::vector<NewList> lists = photoLists(records, first, playerOf(m_session), m_identifiers);
  const auto albums =
      std::count_if(lists.begin(), lists.end(), [](const NewList &list) { return !list.name.isEmpty(); });
  if (albums > 0) {
    storeNextPlaylistId(first + albums);
  }
  return lists;
}

void PlaylistMetaData::storeNextPlaylistId(qint64 next) {
  m_settings.set(u"PlaylistID"_s, QString::number(next));
  try {
    m_settings.save();
  } catch (const Failure &failure) {
    // The counter is made anew from the server's file; a list is not given up for it.
    m_desktop.log(u"The settings could not be written: "_s + failure.reason());
  }
}

} // namespace sonorel
