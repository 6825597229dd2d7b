// What outlives a client: the disk, the share and the time. And a client on fakes, which may die at any operation and
// be started anew on the same world. Single-threaded.
#pragma once

#include "favourites/PlaylistMetaData.h"
#include "link/Connection.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/FakeIdentifiers.h"
#include "support/FakeLoop.h"
#include "support/FakeMetadata.h"
#include "support/FakeProcesses.h"
#include "support/FakeRunningApplications.h"
#include "support/FakeScripts.h"
#include "support/FakeView.h"
#include "support/FakeWorker.h"
#include "support/Fixtures.h"
#include "transfer/DropIntake.h"
#include "transfer/TrackArtwork.h"
#include "transfer/TransferDriver.h"

#include <functional>

namespace sonorel::test {

inline constexpr QStringView kSettings = u"/Applications/Sonorel/App Data/MacClientProperty";
inline constexpr QStringView kSupport = u"/Users/me/Library/Application Support/Sonorel/";
inline constexpr QStringView kBackup = u"/Users/me/Library/Backup";
inline constexpr QStringView kMusic = u"/Users/me/Music/";
inline constexpr QStringView kBookmarks = u"/Users/me/Bookmarks/";
inline constexpr qsizetype kTrackSize = 200'000;
inline constexpr qsizetype kPictureSize = 5000;
inline const QString kArtworkTemporary = artworkTemporaryName(QStringLiteral("0123abcd")); // of every client

class World {
public:
  // The share is there, unmounted. Its favourites hold an old list and
  // colour keys with titles.
  explicit World(const QString &product = QStringLiteral("Auracore 5"));

  FakeFileSystem files;
  FakeProcesses processes{files};
  FakeClock clock{&files};
  FakeScripts scripts;
  FakeMetadata metadata;
  FakeIdentifiers identifiers;
  FakeRunningApplications applications; // without a player nobody wants artwork
  LibplistPropertyLists lists;
  const QString product;

  // A track of kTrackSize bytes of the given seed below kMusic, with tags. "Artist/Album/Title.mp3".
  QString track(const QString &path, char seed = 'a', qint64 time = 500'000);
  // The picture of a track's album, as its tags hold it; there is a player from now on.
  void artwork(const QString &track, const QByteArray &bytes);
  // A picture of the given seed below kMusic.
  QString picture(const QString &path, char seed = 'a', qint64 time = 500'000);
  // A browser's bookmark file below kBookmarks.
  QString bookmark(const QString &name);

private:
  void installClient();
  void furnishShare();
  // The shipped converter: writes the ".url" file beside the bookmark.
  [[nodiscard]] std::optional<QString> convert(const QString &path);
  // The shipped exporter: places the artwork of a track beside it on the share.
  [[nodiscard]] ToolResult exportArtwork(const QStringList &arguments, bool killed);

  QMap<QString, QByteArray> m_artwork; // by track
};

// One drag: of tracks and files, or of albums, or of bookmarks.
struct Dropped {
  QString playlist;
  QStringList paths;
  QList<std::pair<QString, QStringList>> albums = {}; // name and pictures
  QStringList titles = {};
  QStringList urls = {};
};

// The roles of a transfer, from the drop to the player's favourites, joined as the controller joins them.
class Client {
public:
  explicit Client(World &world);
  Client(const Client &) = delete;
  Client &operator=(const Client &) = delete;

  World &world;
  FakeLoop loop;
  FakeWorker worker;
  FakeDesktop desktop;
  FakeView view;
  TransferBoard board;
  quint32 finishedDrops = 0;

  // What a start and a pressed Connect button do on the way to a validated favourites file. False: not mounted.
  [[nodiscard]] bool connect();
  void drop(const Dropped &dropped); // posted like a notification
  void cancel();
  void sleep(); // the machine goes to sleep while connected
  void wake();
  // Runs operations and worker until nothing is left to do; throws std::runtime_error when that does not end.
  void settle();
  [[nodiscard]] bool insideWorker() const { return m_insideWorker; }

private:
  [[nodiscard]] TransferArtwork transferArtwork();
  [[nodiscard]] bool isConnected() { return Connection(m_connectionTools).isConnected(); }

  const ShareFolders m_folders = standardFolders();
  Settings m_settings;
  Session m_session;
  Strings m_strings;
  MessageLog m_log;
  std::atomic<bool> m_isAuthenticationError{false};
  ConnectionTools m_connectionTools;
  ClientMessages m_messages;
  MetadataCache m_metadata;
  TransferTools m_transferTools;
  TrackArtwork m_artwork;
  Transfer m_transfer;
  FavouritesRewrite m_rewrite;
  MainDictionaryFile m_dictionaryFile;
  MainDictionary m_dictionary;
  ColourLimits m_limits;
  FavouritesMerge m_merge;
  PhotoFavourites m_photoFavourites;
  PlaylistMetaData m_playlists;
  TransferDriver m_driver;
  DropIntake m_intake;
  bool m_insideWorker = false;
};

} // namespace sonorel::test
