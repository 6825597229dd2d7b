// Turns the server's music favourites file into the main dictionary and the main dictionary into a favourites file.
// An object lives as long as one validation or merge; it works on the bytes that were seen in that turn, so the file
// is read once. Not thread-safe.
#pragma once

#include "favourites/FavouritesFile.h"
#include "favourites/FavouritesModel.h"
#include "favourites/FavouritesRewrite.h"
#include "favourites/ListContent.h"
#include "favourites/MainDictionaryFile.h"
#include "platform/Desktop.h"
#include "platform/Identifiers.h"

#include <optional>

namespace sonorel {

enum class WriteResult {
  Written,
  Changed, // the server's file changed since it was seen, nothing was written: look and merge again
  Failed,  // logged; the old file was put back as far as possible
};

struct ParserTools {
  Desktop &desktop;
  Identifiers &identifiers;
  MainDictionaryFile &dictionary;
};

class Parser {
public:
  // What the tools refer to must outlive the object.
  Parser(ParserTools tools, PlayerTraits player);

  // The fields of one list's content in file order; see ListContent.h.
  [[nodiscard]] static ListItems getItemsFromOrvFile(QByteArrayView content);

  // 0 when there is a file with a List1 that can be read; -1 when there is none, it is empty, or its List1 is damaged
  // beyond use (logged): start with a fresh dictionary. Throws Failure (Damaged) when its records do not fit the
  // product's model: the file is to be left alone.
  [[nodiscard]] int getAlreadyExistingPlaylistsFromAC5(const SeenFile &seen);
  // After a 0: all lists with their titles, written to the main dictionary's file as well. What departs from the
  // format, and a dictionary file that cannot be written, is logged.
  [[nodiscard]] FavouriteLists readList2FromAC5();

  // Writes the lists, in their order, as the server's file. Never throws for a failure of the write.
  [[nodiscard]] WriteResult makeOrvFileForGivenDictionary(FavouritesRewrite::Turn &turn, const SeenFile &seen,
                                                          const FavouriteLists &lists);
  // The complete bytes of the file with a fresh GUID in its header; built before anything is deleted.
  [[nodiscard]] QByteArray addGivenListDictionaryToOrvFile(const FavouriteLists &lists);

private:
  ParserTools m_tools;
  PlayerTraits m_player;
  std::optional<DecodedFavourites> m_read;
};

} // namespace sonorel
