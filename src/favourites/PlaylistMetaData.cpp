#include "favourites/PlaylistMetaData.h"

#include "core/state/Report.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

PlaylistMetaData::PlaylistMetaData(TransferBoard &board, FavouritesMerge &merge, Settings &settings,
                                   const Session &session, Identifiers &identifiers, Desktop &desktop, Hooks hooks)
    : m_board(board), m_merge(merge), m_settings(settings), m_session(session), m_identifiers(identifiers),
      m_desktop(desktop), m_hooks(std::move(hooks)) {}

bool PlaylistMetaData::sendMetaDataForPlaylist(bool photos) {
  try {
    if (photos) {
      return true; // pictures are refused item by item, so that no record of theirs is ever transferred
    }
    return sendMusic();
  } catch (const std::exception &exception) {
    logException(m_desktop, u"sendMetaDataForPlaylist"_s, exception);
    return false;
  }
}

bool PlaylistMetaData::sendMusic() {
  PlaylistDetails details =
      makePlaylistDetailData(m_board.records(false), m_hooks.album, playerOf(m_session), m_identifiers);
  m_board.replaceRecords(false, details.records);

  bool isNumber = false;
  const qint64 stored = m_settings.text(u"PlaylistID"_s).toLongLong(&isNumber);
  const qint64 first = isNumber ? stored : 1;
  std::vector<NewList> lists = makePlaylistDataArrays(details.records, first, m_identifiers);
  m_settings.setAndSave(u"PlaylistID"_s, QString::number(first + static_cast<qint64>(lists.size())));
  for (NewList &list : lists) {
    list.titles = details.titles.value(list.name);
  }
  if (!m_hooks.isConnected()) {
    m_desktop.log(u"The playlists were not sent: the share is not mounted."_s);
    return false;
  }
  return m_merge.addPlaylistToDictionary(lists, m_hooks.stop());
}

} // namespace sonorel
