#include "favourites/PhotoFavourites.h"

#include "core/state/LogException.h"
#include "favourites/FavouritesFile.h"
#include "favourites/MainDictionary.h"
#include "favourites/PhotoFavouritesFile.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr FavouritesKind kKind = FavouritesKind::Photos;

// What is damaged is not empty: it has its reason told where it is read.
bool holdsNoAlbum(const QByteArray &bytes) {
  try {
    return isNetMusicFavEmpty(bytes, kKind);
  } catch (const Failure &) {
    return false;
  }
}

} // namespace

PhotoFavourites::PhotoFavourites(Desktop &desktop, Identifiers &identifiers, const Session &session,
                                 FavouritesRewrite &rewrite)
    : m_desktop(desktop), m_identifiers(identifiers), m_session(session), m_rewrite(rewrite) {}

bool PhotoFavourites::makeList1UsingArrays(const std::vector<NewList> &lists, std::stop_token stop, MergeTry kind) {
  try {
    FavouritesRewrite::Turn turn = m_rewrite.begin(kKind, stop);
    for (int attempt = 0; attempt < MainDictionary::kAttempts; ++attempt) {
      if (writeOnce(turn, lists, kind) == WriteResult::Written) {
        return true;
      }
    }
    throw Failure(u"the server's favourites are changed by somebody else all the time"_s);
  } catch (const std::exception &exception) {
    logException(m_desktop, u"makeList1"_s, exception);
    return false;
  }
}

WriteResult PhotoFavourites::writeOnce(FavouritesRewrite::Turn &turn, const std::vector<NewList> &lists,
                                       MergeTry kind) {
  const SeenFile seen = turn.look();
  const PlayerTraits player = playerOf(m_session);
  const QString guid = m_identifiers.generateUUID();
  if (holdsNoAlbum(seen.bytes)) {
    return turn.replace(seen, newPhotoFavourites(lists, player, guid)) ? WriteResult::Written : WriteResult::Changed;
  }
  const DecodedFavourites read = decodeFavourites(seen.bytes, kKind, player);
  for (const QString &oddity : read.oddities) {
    m_desktop.log(favouritesFileName(kKind) + u": "_s + oddity);
  }
  if (!read.fitsModel) {
    throw Failure(u"the server's favourites do not fit the product \"%1\""_s.arg(player.deviceName),
                  FailureKind::Damaged);
  }
  const std::vector<NewList> missing = stillToWrite(lists, read.lists, kind);
  if (missing.empty()) {
    return WriteResult::Written;
  }
  const QByteArray bytes = read.list1Readable ? extendedPhotoFavourites(seen.bytes, missing, player, guid)
                                              : newPhotoFavourites(missing, player, guid);
  return turn.replace(seen, bytes) ? WriteResult::Written : WriteResult::Changed;
}

void PhotoFavourites::createIfMissing(const QByteArray &emptyList, std::stop_token stop) {
  FavouritesRewrite::Turn turn = m_rewrite.begin(kKind, stop);
  const SeenFile seen = turn.look();
  if (seen.bytes.isEmpty() && !turn.replace(seen, emptyList)) {
    m_desktop.log(u"The empty list of photo favourites was not written: somebody else was faster."_s);
  }
}

} // namespace sonorel
