#include "World.h"

#include "favourites/FavouritesFile.h"

#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

constexpr int kTurns = 20'000;  // operations of one settling; a transfer takes a few hundred
constexpr int kPauses = 20'000; // pauses of one world

FavouriteTitle title(const QString &path, char id) {
  return {path, QByteArray(36, '\0'), QByteArray(16, id), u"1"_s};
}

FavouriteList colour(const QString &name, int number, const QString &path) {
  return {name,
          QString::number(number),
          u"6"_s,
          QByteArray(16, static_cast<char>('A' + number)),
          {title(path, static_cast<char>('a' + number))},
          std::nullopt};
}

} // namespace

World::World(const QString &productName) : product(productName) {
  installClient();
  furnishShare();
  files.makeFolders(u"/private/tmp"_s);
  scripts.onConvert = [this](const QString &path) { return convert(path); };
  processes.onScript = [this](const ToolRequest &request, bool killed) {
    return exportArtwork(request.arguments, killed);
  };
  clock.onSleep = [this] {
    if (clock.sleeps.size() > kPauses) {
      throw std::runtime_error("the client pauses without end");
    }
  };
}

void World::installClient() {
  files.put(kSettings.toString(), shipped(u"App Data/MacClientProperty"_s));
  installStrings(files);
  files.makeFolders(kSupport.toString().chopped(1));
  files.makeFolders(u"/Library/Application Support/Sonorel"_s);
}

void World::furnishShare() {
  mountShare(files, product);
  const QString system = kMountPoint.toString() + u"/System/"_s;
  files.put(kAddressFilePath.toString(), "first line\n00-11-22-33-44-55\n");
  files.put(system + u"OrvSpecialFavouriteLimits.orv"_s,
            "GREEN_ENABLED=0\r\nYELLOW_ENABLED=0\r\nRED_ENABLED=0\r\nBLUE_ENABLED=0\r\nGREEN_LIMIT=9\r\n"
            "YELLOW_LIMIT=9\r\nRED_LIMIT=9\r\nBLUE_LIMIT=9\r\n");
  const FavouriteLists old{colour(u"Red"_s, 1, u"red.mp3"_s),
                           colour(u"Green"_s, 2, u"green.mp3"_s),
                           colour(u"Yellow"_s, 3, u"yellow.mp3"_s),
                           colour(u"Blue"_s, 4, u"blue.mp3"_s),
                           {u"@~Old@~"_s,
                            u"5"_s,
                            u"6"_s,
                            QByteArray(16, 'o'),
                            {title(u"Old\\one.mp3"_s, 'p'), title(u"Old\\two.mp3"_s, 'q')},
                            std::nullopt}};
  files.put(kMusicFavouritesPath.toString(),
            encodeMusicFavourites(old, {product, false}, u"00000000-0000-0000-0000-0000000000FF"_s));
  files.unmount(kMountPoint.toString());
  files.erase(kMountPoint.toString());
}

QString World::track(const QString &path, char seed, qint64 time) {
  const QString whole = kMusic.toString() + path;
  files.put(whole, QByteArray(kTrackSize, seed), time);
  const QStringList parts = path.split(u'/');
  TrackTags tags;
  tags.authors = {parts.value(0)};
  tags.album = parts.value(1);
  tags.title = parts.last().section(u'.', 0, 0).section(u'-', -1);
  metadata.set(whole, tags);
  return whole;
}

QString World::picture(const QString &path, char seed, qint64 time) {
  const QString whole = kMusic.toString() + path;
  files.put(whole, QByteArray(kPictureSize, seed), time);
  return whole;
}

QString World::bookmark(const QString &name) {
  const QString path = kBookmarks.toString() + name;
  files.put(path, "http://example.org/" + name.toUtf8());
  return path;
}

std::optional<QString> World::convert(const QString &path) {
  try {
    files.createExclusively(path.section(u'.', 0, -2) + u".url"_s, "[InternetShortcut]\nURL=" + files.read(path));
    return std::nullopt;
  } catch (const Failure &failure) {
    return failure.reason();
  }
}

void World::artwork(const QString &track, const QByteArray &bytes) {
  m_artwork.insert(track, bytes);
  applications.applications = {{u"iTunes"_s, u"/Player"_s, {}, 0}};
}

// script, track, title, name, folders
ToolResult World::exportArtwork(const QStringList &arguments, bool killed) {
  const QString folder = kMusicFolderLiteral.toString() + QString(arguments.value(4)).replace(u':', u'/');
  const QString temporary = folder + kArtworkTemporary;
  const QString picture = folder + arguments.value(3) + u".jpg"_s;
  try {
    if (files.presence(temporary) == Presence::Present) {
      files.removeFile(temporary);
    }
    if (!m_artwork.contains(arguments.value(1))) {
      return exited(1);
    }
    const QByteArray bytes = m_artwork.value(arguments.value(1));
    if (files.presence(picture) == Presence::Present && files.read(picture) == bytes) {
      return exited(0);
    }
    if (killed) {
      files.writeHalf(temporary, bytes);
      return exited(137);
    }
    files.createExclusively(temporary, bytes);
    files.rename(temporary, picture);
    return exited(0);
  } catch (const Failure &) {
    return exited(3);
  }
}

Client::Client(World &in)
    : world(in), m_settings(world.files, world.lists, kSettings.toString()),
      m_strings(world.files, world.lists, resourceFolder()),
      m_log([this] { view.fillMessageLog([this] { return m_log.viewText(); }); }),
      m_connectionTools{world.files,
                        world.processes,
                        world.clock,
                        desktop,
                        m_settings,
                        [] { return std::stop_token(); },
                        m_isAuthenticationError},
      m_messages(world.files, desktop, m_strings, view, m_session, m_folders),
      m_metadata(world.files, world.metadata), m_transferTools{world.files, world.processes, world.scripts,
                                                               world.clock, desktop,         m_metadata,
                                                               board},
      m_artwork(m_transferTools, world.applications, m_strings, view, m_folders,
                {u"/Applications/Sonorel/Sonorel.app"_s, u"/Applications/Sonorel/App Data/"_s,
                 u"/Library/Application Support/Sonorel/ArtworkData.txt"_s, kArtworkTemporary}),
      m_transfer(m_transferTools, m_folders, transferArtwork()),
      m_rewrite({world.files, world.clock, world.identifiers, desktop, m_session}, m_folders, kSupport.toString(),
                kBackup.toString()),
      m_dictionaryFile(world.files, world.lists, kSupport.toString() + u"mainDict.xml"_s),
      m_dictionary({desktop, world.identifiers, m_settings, m_session}, m_rewrite, m_dictionaryFile),
      m_limits({world.files, world.clock, desktop, [this] { return m_rewrite.backupFolderOfProduct(); }}, m_folders,
               [] {}),
      m_merge({world.files, world.lists, world.clock, desktop, m_settings, m_session, m_dictionary, m_dictionaryFile,
               m_rewrite, m_limits}),
      m_photoFavourites(desktop, world.identifiers, m_session, m_rewrite),
      m_playlists(board, m_merge, m_photoFavourites, m_settings, m_session, world.identifiers, desktop,
                  {world.files, world.lists, desktop, kBackup.toString()},
                  {[this] { return isConnected(); },
                   [this](const QString &path) {
                     const auto tags = m_metadata.tags(path);
                     return tags ? tags->album : QString();
                   },
                   [] { return std::stop_token(); }}),
      m_driver(m_transferTools, m_transfer, m_log, m_strings, m_session, view, worker, m_folders,
               kSupport.toString() + u"mainDict.xml"_s,
               {[this] { return isConnected(); }, [this] { m_limits.enableCFLLimits(); },
                [this](bool photos) { return m_playlists.sendMetaDataForPlaylist(photos); },
                [this](const TransferredKinds &kinds) { m_messages.sendMetaDataForTransferredFiles(kinds); },
                [this](quint32 count) { finishedDrops += count; },
                [this](bool photos) { return m_playlists.hasUnwritten(photos); }}),
      m_intake(world.files, board, m_log, m_strings, m_session, view, desktop,
               {[this] { return isConnected(); }, [this] { m_driver.startTransfer(); }, [] {},
                [this](quint32 count) { finishedDrops += count; }}) {
  view.autoAnswer = 1; // no player is opened
  m_settings.load();
  m_strings.setLanguageFile(u"StringsEnglish"_s);
  m_session.setDeviceName(world.product);
  m_session.setUUID(u"{00000000-0000-0000-0000-0000000000AA}"_s);
  m_session.setConnectedAddress(u"10.0.0.5"_s);
  m_intake.setReady();
}

TransferArtwork Client::transferArtwork() {
  return {[this](const QString &track, const std::stop_token &stop) { m_artwork.embedArtworkToTrack(track, stop); },
          [this](const QString &track, const QString &name, bool hierarchy, const std::stop_token &stop) {
            m_artwork.transferStandAloneArtwork(track, name, hierarchy, stop);
          }};
}

bool Client::connect() {
  board.isCancel = false;
  board.resetToIdle();
  if (!Connection(m_connectionTools).connectToVaultbox(u"secret"_s, u"10.0.0.5"_s) || !isConnected()) {
    return false;
  }
  m_session.setHardwareAddress(u"00-11-22-33-44-55"_s);
  m_messages.send(kClientConnected);
  m_rewrite.recoverAtConnect();
  const bool validated = m_dictionary.validateOrvFile(); // when it fails the connection stays
  m_limits.completeInterruptedWrite();
  if (validated) {
    m_playlists.retryUnwritten({});
  }
  return true;
}

void Client::drop(const Dropped &dropped) {
  loop.post([this, dropped] {
    QVariantList albums;
    for (const auto &[name, pictures] : dropped.albums) {
      albums.append(QVariantMap{{u"albumName"_s, name}, {u"draggedFiles"_s, pictures}});
    }
    if (!albums.isEmpty()) {
      m_intake.handleiPhotoDragAndDrop({{}, {{u"PhotoData"_s, albums}}});
    } else if (!dropped.titles.isEmpty()) {
      m_intake.handleSafariDragAndDrop({{}, {{u"Titles"_s, dropped.titles}, {u"Urls"_s, dropped.urls}}});
    } else {
      m_intake.handleiTunesDragAndDrop({dropped.playlist, {{u"draggedFiles"_s, dropped.paths}}});
    }
  });
}

void Client::cancel() {
  loop.post([this] { board.isCancel = true; });
}

void Client::sleep() {
  loop.post([this] {
    board.manualSleepWasConnected = true;
    world.files.unmount(kMountPoint.toString());
  });
}

void Client::wake() {
  loop.post([this] {
    board.clearQueue();
    board.manualSleepWasConnected = false;
  });
}

void Client::settle() {
  for (int turn = 0; turn < kTurns; ++turn) {
    if (loop.runOne()) {
      continue;
    }
    if (!worker.hasBody()) {
      return;
    }
    m_insideWorker = true;
    worker.run();
    m_insideWorker = false;
  }
  throw std::runtime_error("the client does not come to rest");
}

} // namespace sonorel::test
