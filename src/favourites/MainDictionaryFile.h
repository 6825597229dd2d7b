// "mainDict.xml", the client's record of the music favourites, as a property list: keys "0", "1", ... without gaps,
// each with "Playlist" and, when the list has titles, "Songs". Also the form of "SonorelCFLContents.xml". The pure
// conversions may be called from any thread.
#pragma once

#include "favourites/FavouritesModel.h"
#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <QVariantMap>

namespace sonorel {

[[nodiscard]] QVariantMap dictionaryOf(const FavouriteLists &lists);
// Walks "0", "1", ... and ends at the first missing number. Wrong types read as absent.
[[nodiscard]] FavouriteLists listsOfDictionary(const QVariantMap &dictionary);

class MainDictionaryFile {
public:
  // The references must outlive the object; path is `mainDictPath`.
  MainDictionaryFile(FileSystem &files, PropertyLists &lists, QString path);

  // Throws Failure: Absent, Damaged.
  [[nodiscard]] FavouriteLists load();
  // Atomically. Throws Failure.
  void save(const FavouriteLists &lists);

private:
  FileSystem &m_files;
  PropertyLists &m_lists;
  QString m_path;
};

} // namespace sonorel
