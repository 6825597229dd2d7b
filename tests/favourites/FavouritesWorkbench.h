// One client with its favourites objects on a fake share. A second workbench on the same files is the next run of the
// client, or another client when its folder differs.
#pragma once

#include "favourites/MainDictionary.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/FakeIdentifiers.h"
#include "support/Fixtures.h"

namespace sonorel::test {

inline const QString kServerFile = QStringLiteral("/Volumes/VB-SHARE$/System/NetMusicFavorites.orv");
inline const QString kServerPhotoFile = QStringLiteral("/Volumes/VB-SHARE$/System/PhotoFavorites.orv");
inline const QString kServerLock = QStringLiteral("/Volumes/VB-SHARE$/System/.sonorel-lock");

struct FavouritesWorkbench {
  FakeFileSystem &files;
  QString folder; // ends in "/"
  FakeClock clock{&files};
  FakeIdentifiers identifiers;
  FakeDesktop desktop;
  LibplistPropertyLists propertyLists;
  Settings settings;
  Session session;
  FavouritesRewrite rewrite;
  MainDictionaryFile dictionaryFile;
  MainDictionary dictionary;

  // identifiersUsed: how many the client has drawn before; two clients must not draw the same.
  explicit FavouritesWorkbench(FakeFileSystem &fake, const QString &product = QStringLiteral("Auralis 5"),
                               const QString &client = QStringLiteral("/Client"), int identifiersUsed = 0)
      : files(fake), folder(client + u'/'),
        settings(fake, propertyLists, folder + QStringLiteral("MacClientProperty")),
        rewrite({fake, clock, identifiers, desktop, session}, standardFolders(), folder,
                folder + QStringLiteral("Backup")),
        dictionaryFile(fake, propertyLists, folder + QStringLiteral("mainDict.xml")),
        dictionary({desktop, identifiers, settings, session}, rewrite, dictionaryFile) {
    files.makeFolders(client);
    for (int i = 0; i < identifiersUsed; ++i) {
      static_cast<void>(identifiers.generateUUID());
      static_cast<void>(identifiers.generateUUIDBytes());
    }
    session.setDeviceName(product);
    session.setHardwareAddress(QStringLiteral("00-11-22-33-44-55"));
    const char fillers[] = {'r', 'g', 'y', 'b'};
    for (int i = 0; i < 4; ++i) {
      settings.set(QStringLiteral("CFLGUID") + colourName(i), QByteArray(16, fillers[i]));
    }
  }

  // The PlaylistID counter as the next run would find it.
  [[nodiscard]] QString savedCounter() {
    Settings next(files, propertyLists, folder + QStringLiteral("MacClientProperty"));
    next.load();
    return next.text(QStringLiteral("PlaylistID"));
  }
  [[nodiscard]] QString backup(const QString &suffix,
                               const QString &key = QStringLiteral("_00-11-22-33-44-55")) const {
    return folder + QStringLiteral("Backup/") + key + QStringLiteral("/NetMusicFavorites.orv") + suffix;
  }
};

} // namespace sonorel::test
