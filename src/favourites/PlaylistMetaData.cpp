#include "favourites/PlaylistMetaData.h"

#include "core/state/Report.h"

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

PlaylistMetaData::PlaylistMetaData(TransferBoard &board, FavouritesMerge &merge, Settings &settings,
                                   const Session &session, Identifiers &identifiers, Desktop &desktop, Hooks hooks)
    : m_board(board), m_merge(merge), m_settings(settings), m_session(session), m_identifiers(identifiers),
      m_desktop(desktop), m_hooks(std::move(hooks)) {}

bool PlaylistMetaData::sendMetaDataForPlaylist(bool photos) {
  const QList<PlaylistInfo> records = m_board.records(photos);
  bool sent = false;
  try {
    sent = photos ? sendPhotos(records) : sendMusic(records);
  } catch (const std::exception &exception) {
    logException(m_desktop, u"sendMetaDataForPlaylist"_s, exception);
  }
  if (!sent) {
    m_board.replaceRecords(photos, records);
  }
  return sent;
}

bool PlaylistMetaData::sendPhotos(const QList<PlaylistInfo> &records) {
  const bool transferred = std::any_of(records.begin(), records.end(),
                                       [](const PlaylistInfo &record) { return record.songTransferFlag == u"Y"; });
  if (transferred) {
    m_desktop.log(u"The albums of the transferred pictures were not written: this is not possible yet."_s);
  }
  return !transferred;
}

bool PlaylistMetaData::sendMusic(const QList<PlaylistInfo> &records) {
  const PlaylistDetails details = makePlaylistDetailData(records, m_hooks.album, playerOf(m_session), m_identifiers);
  m_board.replaceRecords(false, details.records);
  const std::vector<NewList> lists = newLists(details);
  if (m_hooks.isConnected()) {
    return m_merge.addPlaylistToDictionary(lists, m_hooks.stop());
  }
  if (std::all_of(lists.begin(), lists.end(), [](const NewList &list) { return list.titles.empty(); })) {
    return true; // nothing was transferred
  }
  m_desktop.log(u"The playlists were not written: the share is not mounted."_s);
  return false;
}

std::vector<NewList> PlaylistMetaData::newLists(const PlaylistDetails &details) {
  const qint64 first = currentPlaylistId(m_settings);
  std::vector<NewList> lists = makePlaylistDataArrays(details.records, first, m_identifiers);
  for (NewList &list : lists) {
    list.titles = details.titles.value(list.name);
  }
  m_settings.set(u"PlaylistID"_s, QString::number(first + static_cast<qint64>(lists.size())));
  try {
    m_settings.save();
  } catch (const Failure &failure) {
    // The counter is made anew from the server's file; a list is not given up for it.
    m_desktop.log(u"The settings could not be written: "_s + failure.reason());
  }
  return lists;
}

} // namespace sonorel
