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
  try {
    return photos ? sendPhotos(m_board.records(true)) : sendMusic();
  } catch (const std::exception &exception) {
    logException(m_desktop, u"sendMetaDataForPlaylist"_s, exception);
    return false;
  }
}

bool PlaylistMetaData::hasUnwritten(bool photos) const {
  return !photos && m_unwritten.hasAny(productKey(m_session));
}

bool PlaylistMetaData::retryUnwritten() {
  const QString product = productKey(m_session);
  if (!m_unwritten.hasAny(product) || !m_hooks.isConnected()) {
    return true;
  }
  return m_unwritten.retry(product, [this](const std::vector<NewList> &lists) {
    return m_merge.addPlaylistToDictionary(lists, m_hooks.stop(), MergeTry::Again);
  });
}

bool PlaylistMetaData::sendPhotos(const QList<PlaylistInfo> &records) {
  const bool transferred = std::any_of(records.begin(), records.end(),
                                       [](const PlaylistInfo &record) { return record.songTransferFlag == u"Y"; });
  if (transferred) {
    m_desktop.log(u"The albums of the transferred pictures were not written: this is not possible yet."_s);
  }
  return true;
}

// Kept lists are written as a transfer of their own, before this one: as if nothing had come between.
bool PlaylistMetaData::sendMusic() {
  const bool retried = retryUnwritten();
  const QList<PlaylistInfo> records = m_board.records(false);
  const bool sent = records.isEmpty() || sendRecords(records);
  return sent && retried;
}

bool PlaylistMetaData::sendRecords(const QList<PlaylistInfo> &records) {
  const QString product = productKey(m_session);
  const PlaylistDetails details = makePlaylistDetailData(records, m_hooks.album, playerOf(m_session), m_identifiers);
  m_board.replaceRecords(false, details.records);
  std::vector<NewList> lists = newLists(details);
  if (m_hooks.isConnected()) {
    if (m_merge.addPlaylistToDictionary(lists, m_hooks.stop())) {
      return true;
    }
  } else {
    m_desktop.log(u"The playlists were not written: the share is not mounted."_s);
  }
  m_board.clearRecords(false);
  if (std::all_of(lists.begin(), lists.end(), [](const NewList &list) { return list.titles.empty(); })) {
    return true; // nothing was transferred
  }
  m_unwritten.keep(product, std::move(lists));
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
