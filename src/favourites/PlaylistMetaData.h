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
    AlbumLookup album;                 // AlbumNames::albumOf
    std::function<std::stop_token()> stop;
  };

  // All references must outlive the object.
  PlaylistMetaData(TransferBoard &board, FavouritesMerge &merge, Settings &settings, const Session &session,
                   Identifiers &identifiers, Desktop &desktop, Hooks hooks);

  // False when the server's favourites do not hold what was transferred; the reason is logged and the board's records
  // are again what they were before the call, for another try. Emptying the records is the driver's.
  // photos: the albums of pictures. Transferred pictures cannot be written to the photo favourites: false and a log
  // line, nothing is changed. Without one there is nothing to write.
  [[nodiscard]] bool sendMetaDataForPlaylist(bool photos);

private:
  [[nodiscard]] bool sendMusic(const QList<PlaylistInfo> &records);
  [[nodiscard]] bool sendPhotos(const QList<PlaylistInfo> &records);
  [[nodiscard]] std::vector<NewList> newLists(const PlaylistDetails &details);

  TransferBoard &m_board;
  FavouritesMerge &m_merge;
  Settings &m_settings;
  const Session &m_session;
  Identifiers &m_identifiers;
  Desktop &m_desktop;
  Hooks m_hooks;
};

} // namespace sonorel
