// Merges newly dropped lists into the server's favourites: looks at the server's file, takes over everything that
// stands there, adds or replaces the new lists, adapts the limits of the colour keys and writes the file anew. One
// merge is one turn of the rewrite, so that no other client comes between the look and the write. Worker thread.
#pragma once

#include "favourites/ColourLimits.h"
#include "favourites/FavouritesRewrite.h"
#include "favourites/MainDictionary.h"
#include "favourites/WrittenLists.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <stop_token>
#include <vector>

namespace sonorel {

struct MergeTools {
  FileSystem &files;
  PropertyLists &propertyLists;
  Clock &clock;
  Desktop &desktop;
  Settings &settings;
  const Session &session;
  MainDictionary &dictionary;
  MainDictionaryFile &dictionaryFile;
  FavouritesRewrite &rewrite;
  ColourLimits &limits;
};

class FavouritesMerge {
public:
  // What the tools refer to must outlive the object.
  explicit FavouritesMerge(MergeTools tools);

  // False when the server's file does not hold the new lists; the reason is logged. A stored list of the same name is
  // always replaced. Throws nothing.
  [[nodiscard]] bool addPlaylistToDictionary(const std::vector<NewList> &newLists, std::stop_token stop,
                                             MergeTry kind = MergeTry::First);

private:
  [[nodiscard]] WriteResult mergeOnce(FavouritesRewrite::Turn &turn, const std::vector<NewList> &newLists,
                                      std::stop_token stop, MergeTry kind);
  [[nodiscard]] qint64 takePlaylistIDs(size_t count);
  void mergeLists(FavouriteLists &lists, const std::vector<NewList> &newLists, qint64 firstId);
  void mergeIntoColourKey(FavouriteList &key, int index, FavouriteList &&fresh);
  [[nodiscard]] std::vector<FavouriteTitle> appended(const FavouriteList &key, const FavouriteList &fresh,
                                                     const KeyLimit &limit) const;
  [[nodiscard]] bool equalsSavedKey(const FavouriteList &key, int index) const;
  void saveColourKeys(const FavouriteLists &lists);

  MergeTools m_tools;
};

} // namespace sonorel
