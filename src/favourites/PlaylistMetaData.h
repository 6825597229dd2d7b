// Hands the playlists of a finished transfer to the favourites database: builds the lists and merges them. Lists are
// kept on the client's disk until they are written, for the next try while the same product is connected. Worker
// thread; retryUnwritten also on the controller's thread while no worker runs. Blocks on the share.
#pragma once

#include "core/state/TransferBoard.h"
#include "favourites/FavouritesMerge.h"
#include "favourites/ListBuilding.h"
#include "favourites/PhotoFavourites.h"
#include "favourites/UnwrittenPlaylists.h"

#include <functional>
#include <optional>
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
  PlaylistMetaData(TransferBoard &board, FavouritesMerge &merge, PhotoFavourites &photoFavourites, Settings &settings,
                   const Session &session, Identifiers &identifiers, Desktop &desktop,
                   const UnwrittenTools &unwritten, Hooks hooks);

  // What earlier transfers could not write comes first, then the board's records: those of music, or with photos
  // those of pictures. False when the server's favourites do not hold all of it; the reason is logged. What was not
  // written is taken off the board and kept here. Emptying the records otherwise is the driver's.
  [[nodiscard]] bool sendMetaDataForPlaylist(bool photos);
  // Where a transfer begins: what it places stands on the product that is connected now. Controller's thread, as are
  // the two below, which are called while no worker runs.
  void beginTransfer();
  // Before a drop is taken: what a broken-off transfer has left on the board goes out with the next one. Is another
  // product connected now, it is taken off and kept for its own.
  void keepRecordsOfAnotherProduct();
  // The same at the end of the program, whichever product is connected.
  void keepRecords();
  // Something waits for another try on the product connected now.
  [[nodiscard]] bool hasUnwritten(bool photos);
  // Tries it; false when something still waits after that. True, and nothing is done, while the share is not there.
  // stop ends a wait for another client, and the whole between two transfers.
  bool retryUnwritten(std::stop_token stop);

private:
  struct Owner {
    QString product;         // the key of what is kept for it
    QString hardwareAddress; // empty when it could not be read
    QString address;
    PlayerTraits player;
  };

  [[nodiscard]] bool isConnectedTo(const Owner &owner) const;
  [[nodiscard]] bool send(bool photos);
  [[nodiscard]] bool retry(bool photos, const std::stop_token &stop);
  [[nodiscard]] bool write(bool photos, const std::vector<NewList> &lists, MergeTry kind,
                           const std::stop_token &stop);
  // Numbered from the counter on.
  [[nodiscard]] std::vector<NewList> listsOf(bool photos, const QList<PlaylistInfo> &records,
                                             const PlayerTraits &player);
  [[nodiscard]] std::vector<NewList> musicLists(const QList<PlaylistInfo> &records, const PlayerTraits &player);
  [[nodiscard]] std::vector<NewList> pictureLists(const QList<PlaylistInfo> &records, const PlayerTraits &player);
  void storeNextPlaylistId(const std::vector<NewList> &lists);
  [[nodiscard]] UnwrittenPlaylists &unwritten(bool photos) { return photos ? m_unwrittenPhotos : m_unwritten; }

  TransferBoard &m_board;
  FavouritesMerge &m_merge;
  PhotoFavourites &m_photoFavourites;
  Settings &m_settings;
  const Session &m_session;
  Identifiers &m_identifiers;
  Desktop &m_desktop;
  Hooks m_hooks;
  std::optional<Owner> m_owner; // of the board's records; controller's thread
  UnwrittenPlaylists m_unwritten;
  UnwrittenPlaylists m_unwrittenPhotos;
};

} // namespace sonorel
