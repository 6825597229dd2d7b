// Hands the playlists of a finished transfer to the favourites database: builds the lists and merges them. Lists that
// could not be written are kept for the next try while the same product is connected. Worker thread; retryUnwritten
// also on the controller's thread while no worker runs. Blocks on the share.
#pragma once

#include "core/state/TransferBoard.h"
#include "favourites/FavouritesMerge.h"
#include "favourites/ListBuilding.h"
#include "favourites/UnwrittenPlaylists.h"

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

  // What earlier transfers could not write comes first, then the board's records. False when the server's favourites
  // do not hold all of it; the reason is logged. Music that was not written is taken off the board and kept here.
  // Emptying the records otherwise is the driver's.
  // photos: the albums of pictures. They are not written to the photo favourites yet: a log line when there are any,
  // and true, because nothing has failed.
  [[nodiscard]] bool sendMetaDataForPlaylist(bool photos);
  // Something waits for another try on the product connected now.
  [[nodiscard]] bool hasUnwritten(bool photos) const;
  // Tries it; false when something still waits after that. True, and nothing is done, while the share is not there.
  bool retryUnwritten();

private:
  [[nodiscard]] bool sendMusic();
  [[nodiscard]] bool sendRecords(const QList<PlaylistInfo> &records);
  [[nodiscard]] bool sendPhotos(const QList<PlaylistInfo> &records);
  [[nodiscard]] std::vector<NewList> newLists(const PlaylistDetails &details);

  TransferBoard &m_board;
  FavouritesMerge &m_merge;
  Settings &m_settings;
  const Session &m_session;
  Identifiers &m_identifiers;
  Desktop &m_desktop;
  Hooks m_hooks;
  UnwrittenPlaylists m_unwritten;
};

} // namespace sonorel
