// Hands the playlists of a finished transfer to the favourites database: builds the lists and merges them. Worker
// thread; blocks on the share.
#pragma once

#include "core/state/TransferBoard.h"
#include "favourites/FavouritesMerge.h"
#include "favourites/ListBuilding.h"

#include <functional>
#include <stop_token>

namespace sonorel {

class PlaylistMetaData {
public:
  struct Hooks {
    std::function<bool()> isConnected; // of a fresh connection
    AlbumLookup album;
    std::function<std::stop_token()> stop;
  };

  // All references must outlive the object.
  PlaylistMetaData(TransferBoard &board, FavouritesMerge &merge, Settings &settings, const Session &session,
                   Identifiers &identifiers, Desktop &desktop, Hooks hooks);

  // photos: the albums of pictures, which no transfer places yet. False when the
  // server's favourites do not hold what was transferred. The records stay; emptying them is the driver's.
  [[nodiscard]] bool sendMetaDataForPlaylist(bool photos);

private:
  [[nodiscard]] bool sendMusic();

  TransferBoard &m_board;
  FavouritesMerge &m_merge;
  Settings &m_settings;
  const Session &m_session;
  Identifiers &m_identifiers;
  Desktop &m_desktop;
  Hooks m_hooks;
};

} // namespace sonorel
