// The client's own record of the music favourites: creating, validating, numbering and comparing. validateOrvFile
// runs on the controller's thread at connect; the merge calls the rest from the worker. No working state of its own.
#pragma once

#include "core/state/Session.h"
#include "core/state/Settings.h"
#include "favourites/ColourKeys.h"
#include "favourites/FavouritesModel.h"
#include "favourites/FavouritesRewrite.h"
#include "favourites/MainDictionaryFile.h"
#include "favourites/Parser.h"
#include "platform/Desktop.h"
#include "platform/Identifiers.h"

#include <stop_token>

namespace sonorel {

struct DictionaryTools {
  Desktop &desktop;
  Identifiers &identifiers;
  Settings &settings;
  const Session &session;
};

// What the session knows of the connected product.
[[nodiscard]] PlayerTraits playerOf(const Session &session);

class MainDictionary {
public:
  static constexpr int kAttempts = 3; // when the server's file changes under our hands

  // All of it must outlive the object.
  MainDictionary(DictionaryTools tools, FavouritesRewrite &rewrite, MainDictionaryFile &file);

  // A dictionary of the four colour keys, or an empty one for "Vaultbox 1"; written to its file.
  [[nodiscard]] FavouriteLists createMainDictionary();
  // What the server's file holds as the turn sees it (written to the dictionary's file), or a fresh dictionary when
  // there is none or it cannot be used. Throws Failure when the file does not fit the product's model.
  [[nodiscard]] FavouriteLists rebuild(Parser &parser, const SeenFile &seen);
  // Colour keys made when missing and moved to the front, duplicate PlaylistIDs renumbered, "PlaylistID" set to the
  // highest plus 1 and saved; the dictionary's file written when something changed.
  void repair(FavouriteLists &lists);
  // Sets "PlaylistID" to the highest PlaylistID plus 1 and saves it; 1 for an empty dictionary.
  void updatePlaylistID(const FavouriteLists &lists);
  // A later holder of a PlaylistID gets the next free one. True when something changed; the setting follows.
  bool renumberDuplicates(FavouriteLists &lists);
  // A Parser for the product connected now.
  [[nodiscard]] Parser parser();

  // Rebuilds the dictionary from the server's file and writes that file anew. False when it was not written; the
  // reason is logged, the connection stays.
  bool validateOrvFile(std::stop_token stop = {});

private:
  [[nodiscard]] WriteResult validateOnce(FavouritesRewrite::Turn &turn);
  void save(const FavouriteLists &lists);
  void storeNextId(qint64 next);

  DictionaryTools m_tools;
  FavouritesRewrite &m_rewrite;
  MainDictionaryFile &m_file;
};

// The leading decimal digits of a PlaylistID; 0 for none. Stops growing far above every PlaylistID.
[[nodiscard]] qint64 leadingNumber(const QString &text);
// The highest PlaylistID; 0 for none. Leading digits count; a number above 2^31 - 2 is passed over and logged.
[[nodiscard]] qint64 highestPlaylistId(const FavouriteLists &lists, Desktop &desktop);
// `compareSavedDictionary:andMainDictionary:`: the same titles, by ItemType and GUID at every place.
[[nodiscard]] bool compareSavedDictionary(const FavouriteList &saved, const FavouriteList &main);

} // namespace sonorel
