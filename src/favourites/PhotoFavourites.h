// The photo favourites on the server: writes the albums of a transfer, and gives a player that has none the empty
// list. Every write is one turn of the rewrite. Worker thread; createIfMissing on the controller's. Blocks on the
// share.
#pragma once

#include "favourites/FavouritesRewrite.h"
#include "favourites/Parser.h"
#include "favourites/WrittenLists.h"
#include "platform/Desktop.h"
#include "platform/Identifiers.h"

#include <stop_token>
#include <vector>

namespace sonorel {

class PhotoFavourites {
public:
  // All references must outlive the object.
  PhotoFavourites(Desktop &desktop, Identifiers &identifiers, const Session &session, FavouritesRewrite &rewrite);

  // `makeList1UsingArrays:playlistDetails::`: the lists, with their titles, behind what the server's file holds.
  // False when that file does not hold them; the reason is logged. Throws nothing.
  [[nodiscard]] bool makeList1UsingArrays(const std::vector<NewList> &lists, std::stop_token stop,
                                          MergeTry kind = MergeTry::First);
  // Writes the given file when the server certainly has none, or one of 0 bytes, after an interrupted rewrite was
  // finished. Throws Failure.
  void createIfMissing(const QByteArray &emptyList, std::stop_token stop);

private:
  [[nodiscard]] WriteResult writeOnce(FavouritesRewrite::Turn &turn, const std::vector<NewList> &lists,
                                      MergeTry kind);

  Desktop &m_desktop;
  Identifiers &m_identifiers;
  const Session &m_session;
  FavouritesRewrite &m_rewrite;
};

} // namespace sonorel
