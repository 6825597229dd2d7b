#include "favourites/Parser.h"

#include "core/state/LogException.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

Parser::Parser(ParserTools tools, PlayerTraits player) : m_tools(tools), m_player(std::move(player)) {}

ListItems Parser::getItemsFromOrvFile(QByteArrayView content) {
  return listItems(content);
}

int Parser::getAlreadyExistingPlaylistsFromAC5(const SeenFile &seen) {
  m_read.reset();
  if (seen.bytes.isEmpty() || seen.bytes.size() == kMusicHeaderSize) {
    return -1;
  }
  DecodedFavourites read = decodeMusicFavourites(seen.bytes, m_player);
  for (const QString &oddity : std::as_const(read.oddities)) {
    m_tools.desktop.log(favouritesFileName(FavouritesKind::Music) + u": "_s + oddity);
  }
  if (!read.fitsModel) {
    throw Failure(u"the server's favourites do not fit the product \"%1\""_s.arg(m_player.deviceName),
                  FailureKind::Damaged);
  }
  if (!read.list1Readable) {
    return -1;
  }
  m_read = std::move(read);
  return 0;
}

FavouriteLists Parser::readList2FromAC5() {
  FavouriteLists lists = m_read ? std::move(m_read->lists) : FavouriteLists();
  m_read.reset();
  try {
    m_tools.dictionary.save(lists);
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"readList2"_s, e, u"Parser"_s);
  }
  return lists;
}

WriteResult Parser::makeOrvFileForGivenDictionary(FavouritesRewrite::Turn &turn, const SeenFile &seen,
                                                  const FavouriteLists &lists) {
  try {
    return turn.replace(seen, addGivenListDictionaryToOrvFile(lists)) ? WriteResult::Written : WriteResult::Changed;
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"makeOrvFileForGivenDictionary"_s, e, u"Parser"_s);
    return WriteResult::Failed;
  }
}

QByteArray Parser::addGivenListDictionaryToOrvFile(const FavouriteLists &lists) {
  try {
    return encodeMusicFavourites(lists, m_player, m_tools.identifiers.generateUUID());
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"addGivenListDictionaryToOrvFile"_s, e, u"Parser"_s);
    throw;
  }
}

} // namespace sonorel
