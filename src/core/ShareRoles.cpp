#include "core/ShareRoles.h"

#include "core/AwaitTransfer.h"
#include "core/Roles.h"
#include "core/state/LogException.h"
#include "favourites/AlbumNames.h"
#include "platform/DropNotifications.h"
#include "transfer/PictureLibrary.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ShareRoles::ShareRoles(Roles &owner)
    : roles(owner), folders(shareFoldersOf(owner.settings)), connectionTools(makeConnectionTools()),
      products({owner.platform.files, owner.platform.propertyLists, owner.platform.desktop, owner.strings,
                owner.interface, owner.settings, owner.session},
               owner.paths.productsDetailsDictFilePath,
               [&owner](const ProductTables &tables) { owner.interface.setProducts(tables); }),
      selection(products, owner.session, owner.strings, owner.interface, selectionHooks()),
      wakeNotice(owner.strings, owner.log, owner.interface),
      wakeOnLan(products, owner.platform.datagrams, owner.platform.clock, owner.platform.desktop,
                {.stop = [&owner] { return owner.interruption.token(); }, .waiting = [this] { wakeNotice.show(); }}),
      discovery(owner.platform.serviceBrowser, products),
      messages(owner.platform.files, owner.platform.desktop, owner.strings, owner.interface, owner.session, folders),
      deviceName(owner.platform.files, owner.platform.propertyLists, owner.platform.desktop, owner.settings,
                 owner.session, folders, owner.paths),
      rewrite({owner.platform.files, owner.platform.clock, owner.platform.identifiers, owner.platform.desktop,
               owner.session},
              folders, owner.paths.tempFileLocation, owner.values.backupFolder),
      dictionaryFile(owner.platform.files, owner.platform.propertyLists, owner.paths.mainDictPath),
      dictionary({owner.platform.desktop, owner.platform.identifiers, owner.settings, owner.session}, rewrite,
                 dictionaryFile),
      productVersion(owner.platform.files, owner.platform.desktop, owner.settings, owner.session, folders),
      limits({owner.platform.files, owner.platform.clock, owner.platform.desktop,
              [this] { return rewrite.backupFolderOfProduct(); }},
             folders, [&owner] { owner.quitRequests.unconditionally(); }),
      merge({owner.platform.files, owner.platform.propertyLists, owner.platform.clock, owner.platform.desktop,
             owner.settings, owner.session, dictionary, dictionaryFile, rewrite, limits}),
      photoFavourites(owner.platform.desktop, owner.platform.identifiers, owner.session, rewrite),
      playlists(
          owner.board, merge, photoFavourites, owner.settings, owner.session, owner.platform.identifiers,
          owner.platform.desktop,
          {owner.platform.files, owner.platform.propertyLists, owner.platform.desktop, owner.values.backupFolder},
          playlistHooks()),
      metadataCache(owner.platform.files, owner.platform.metadata),
      transferTools{owner.platform.files, owner.platform.processes, owner.platform.scripts,
                    owner.platform.clock, owner.platform.desktop,   metadataCache,
                    owner.board,          owner.values.homePath},
      artwork(transferTools, owner.platform.runningApplications, owner.strings, owner.interface, folders,
              {owner.paths.bundle, owner.paths.appDataFolder, owner.paths.artworkHandOver,
               artworkTemporaryName(owner.values.temporaryMark)}),
      transfer(transferTools, folders, transferArtwork()),
      driver(transferTools, transfer, owner.log, owner.strings, owner.session, owner.interface, owner.platform.worker,
             folders, owner.paths.mainDictPath, driverHooks()),
      intake(owner.platform.files, owner.board, owner.log, owner.strings, owner.session, owner.interface,
             owner.platform.desktop, intakeHooks()),
      texts(owner.platform.files, owner.platform.desktop, owner.settings, owner.strings, owner.session,
            owner.interface, owner.paths,
            [this](const QByteArray &emptyList) {
              photoFavourites.createIfMissing(emptyList, roles.interruption.token());
            }),
      clientAlive(owner.platform.loop, {.isConnected = [this] { return connectFlow.isConnected(); },
                                        .sendClientAliveMessage = [this] { messages.sendClientAliveMessage(); }}),
      cleanup(owner.platform.files, owner.platform.clock, owner.platform.desktop, folders,
              owner.values.temporaryMark),
      afterConnection({owner.platform.files, owner.platform.propertyLists, owner.platform.desktop, owner.paths},
                      owner.settings, owner.session, owner.interface, messages, deviceName, products, clientAlive,
                      afterConnectionHooks()),
      connectParts{owner.interface, owner.strings, owner.session, owner.board, owner.log,
                   messages,        products,      texts,         clientAlive, afterConnection},
      connectFlow(connectionTools, connectParts, owner.paths.mainDictPath, connectHooks()),
      automaticConnection(owner.session, owner.interface, automaticHooks()),
      events(connectFlow, connectParts, owner.preferences, owner.platform.clock, owner.platform.desktop,
             eventHooks()),
      sleepAndWake(owner.platform.files, owner.strings, owner.log, owner.board, owner.interface, folders.share(),
                   sleepHooks()) {}

ConnectionTools ShareRoles::makeConnectionTools() {
  return {roles.platform.files,   roles.platform.processes, roles.platform.clock,
          roles.platform.desktop, roles.settings,           [this] { return roles.interruption.token(); },
          isAuthenticationError};
}

ProductSelection::Hooks ShareRoles::selectionHooks() {
  ProductSelection::Hooks hooks;
  hooks.isConnected = [this] { return connectFlow.isConnected(); };
  hooks.onConnect = [this] { connect(); };
  hooks.onDisconnect = [this] { connectFlow.onDisconnect(); };
  hooks.workerRuns = [this] { return driver.isAtWork(); };
  hooks.refuseDisconnect = [this] { connectFlow.refuseDisconnect(); };
  hooks.showPasswordPanel = [this](bool shown) { roles.interface.showPasswordPanel(shown); };
  hooks.isPasswordPanelOpen = [this] { return roles.interface.state().passwordWanted; };
  return hooks;
}

ConnectFlow::Hooks ShareRoles::connectHooks() {
  ConnectFlow::Hooks hooks;
  hooks.unmountVBShareUsingApplescript = [this] { roles.system.unmountVBShareUsingApplescript(); };
  hooks.wakeupOnLanAProduct = [this](const QString &address) { wakeOnLan.WakeupOnLanAProduct(address); };
  hooks.workerRuns = [this] { return driver.isAtWork(); };
  hooks.attemptsEnded = [this] { wakeNotice.end(); };
  hooks.awaitTransfer = [this] { awaitTransfer(); };
  hooks.takeToldOfWaitingDrop = [this] { return driver.takeToldOfWaitingDrop(); };
  return hooks;
}

PlaylistMetaData::Hooks ShareRoles::playlistHooks() {
  const AlbumNames names([this](const QString &path) { return metadataCache.tags(path); }, roles.platform.desktop);
  PlaylistMetaData::Hooks hooks;
  hooks.isConnected = [this] { return isConnected(); };
  hooks.album = [names](const QString &path) { return names.albumOf(path); };
  hooks.stop = [this] { return forcedEnd.get_token(); };
  return hooks;
}

TransferArtwork ShareRoles::transferArtwork() {
  TransferArtwork hooks;
  hooks.embed = [this](const QString &track, const std::stop_token &stop) {
    artwork.embedArtworkToTrack(track, stop);
  };
  hooks.standAlone = [this](const QString &track, const QString &name, bool hierarchy, const std::stop_token &stop) {
    artwork.transferStandAloneArtwork(track, name, hierarchy, stop);
  };
  return hooks;
}

TransferDriver::Hooks ShareRoles::driverHooks() {
  TransferDriver::Hooks hooks;
  hooks.isConnected = [this] { return connectFlow.isConnected(); };
  hooks.enableCFLLimits = [this] { limits.enableCFLLimits(); };
  hooks.sendMetaDataForPlaylist = [this](bool photos) { return playlists.sendMetaDataForPlaylist(photos); };
  hooks.sendMetaDataForTransferredFiles = [this](const TransferredKinds &kinds) {
    messages.sendMetaDataForTransferredFiles(kinds);
  };
  hooks.dropsFinished = [this](quint32 drops) { dropsFinished(drops); };
  hooks.hasUnwrittenPlaylists = [this](bool photos) { return playlists.hasUnwritten(photos); };
  return hooks;
}

DropIntake::Hooks ShareRoles::intakeHooks() {
  DropIntake::Hooks hooks;
  hooks.isConnected = [this] { return connectFlow.isConnected(); };
  hooks.dropComes = [this] {
    if (!driver.isAtWork()) { // its own records stand on the board otherwise
      playlists.keepRecordsOfAnotherProduct();
    }
  };
  hooks.startTransfer = [this] {
    playlists.beginTransfer();
    driver.startTransfer();
  };
  hooks.killTrackChuteAndLaunch = [this] { roles.system.killTrackChuteAndLaunch(); };
  hooks.dropsFinished = [this](quint32 drops) { dropsFinished(drops); };
  hooks.pause = [this](std::chrono::milliseconds pause) {
    roles.interface.flush();
    roles.platform.clock.sleep(pause, roles.interruption.token());
  };
  hooks.changePhotosPaths = [this](const QStringList &paths) {
    return sonorel::changePhotosPaths(paths, roles.values.homePath, roles.platform.files,
                                      roles.platform.propertyLists, roles.platform.desktop);
  };
  hooks.isOutside = roles.values.isOutside;
  return hooks;
}

// Not before people can see what has become of them.
void ShareRoles::dropsFinished(quint32 drops) {
  roles.interface.whenShown([this, drops] { roles.values.dropsFinished(drops); });
}

AfterConnection::Hooks ShareRoles::afterConnectionHooks() {
  AfterConnection::Hooks hooks;
  hooks.updateDeviceName = [this] { texts.updateDeviceName(); };
  hooks.cleanShare = [this] { cleanup.run(); };
  hooks.checkAU5SoftwareVersion = [this] { return productVersion.checkAU5SoftwareVersion(); };
  hooks.validateOrvFile = [this] {
    rewrite.recoverAtConnect(roles.interruption.token());
    const bool validated = dictionary.validateOrvFile(roles.interruption.token());
    if (!driver.isAtWork()) { // the worker's otherwise
      limits.completeInterruptedWrite();
      if (validated) {
        playlists.retryUnwritten(roles.interruption.token());
      }
    }
  };
  return hooks;
}

AutomaticConnection::Hooks ShareRoles::automaticHooks() {
  AutomaticConnection::Hooks hooks;
  hooks.createConnection = [this] { connectFlow.createConnection(); };
  hooks.selectedProduct = [this] {
    const ProductList::ActiveProduct active = products.activeProduct();
    return SelectedProduct{active.address, active.password, active.listIsEmpty};
  };
  hooks.wakeupOnLanAProduct = [this](const QString &address) { wakeOnLan.WakeupOnLanAProduct(address); };
  hooks.connectToVaultbox = [this](const QString &password, const QString &address) {
    return connectFlow.connectToVaultbox(password, address);
  };
  hooks.connected = [this] { connectFlow.connectedAutomatically(); };
  hooks.givenUp = [this] { return roles.interruption.token().stop_requested(); };
  hooks.getConnectionFailureReason = [this] { return connectFlow.getConnectionFailureReason(); };
  hooks.enterPasswordPanel = [this] { roles.interface.showPasswordPanel(true); };
  hooks.showErrorConnect = [this] { texts.showErrorConnect(); };
  return hooks;
}

ApplicationEvents::Hooks ShareRoles::eventHooks() {
  ApplicationEvents::Hooks hooks;
  hooks.performFirstLaunchCheck = [this] { roles.startUp.performFirstLaunchCheck(); };
  hooks.killTrackChuteAndLaunch = [this] { roles.system.killTrackChuteAndLaunch(); };
  hooks.awaitTransfer = [this] { awaitTransfer(); };
  hooks.stopObservingSpaces = [this] { roles.system.stopObservingSpaces(); };
  hooks.stop = [this] { return roles.interruption.token(); };
  return hooks;
}

SleepAndWake::Hooks ShareRoles::sleepHooks() {
  SleepAndWake::Hooks hooks;
  hooks.isConnected = [this] { return connectFlow.isConnected(); };
  hooks.endTransfer = [this](std::chrono::milliseconds limit) {
    roles.platform.worker.requestStop();
    if (!roles.platform.worker.joinWithin(limit)) {
      roles.platform.desktop.log(u"the transfer did not end before the machine sleeps"_s);
    }
  };
  hooks.onDisconnect = [this] { connectFlow.onDisconnect(); };
  return hooks;
}

void ShareRoles::awaitTransfer() {
  sonorel::awaitTransfer(roles.platform.worker, roles.interruption, forcedEnd);
  if (!roles.quitRequests.isTerminated()) {
    forcedEnd = std::stop_source(); // the next transfer is in no hurry
  }
}

void ShareRoles::connect() {
  connectFlow.onConnect();
  ++roles.connectsDone;
}

void ShareRoles::observeNotifications() {
  observe(kMusicDrag.toString(), &DropIntake::handleiTunesDragAndDrop);
  observe(kPhotoDrag.toString(), &DropIntake::handleiPhotoDragAndDrop);
  observe(kBookmarkDrag.toString(), &DropIntake::handleSafariDragAndDrop);
}

void ShareRoles::observe(const QString &name, void (DropIntake::*handler)(const Notification &)) {
  roles.platform.notifications.observe(name, [this, handler](const Notification &drag) {
    if (roles.quitRequests.isTerminated()) {
      dropsFinished(1);
    } else {
      (intake.*handler)(drag);
    }
  });
}

void ShareRoles::prepareProducts() {
  products.clearDetectedDevices();
  products.load();
  roles.interface.setCheckMark(roles.startUp.checkMarkString());
}

bool ShareRoles::registerForPower() {
  sleepAndWake.clearSleepCounter();
  Power::Handlers handlers;
  handlers.hurry = [this] { roles.interruption.interrupt(); };
  handlers.message = [this](PowerMessage message) {
    powerOperation(u"powerMessage"_s, [this, message] {
      roles.interruption.renew(); // the disconnect is to be waited for
      sleepAndWake.powerMessage(message);
    });
  };
  handlers.didWake = [this] { powerOperation(u"afterWakeup"_s, [this] { sleepAndWake.afterWakeup(); }); };
  return roles.platform.power.registerForNotifications(std::move(handlers));
}

void ShareRoles::powerOperation(const QString &name, const std::function<void()> &operation) {
  if (roles.quitRequests.isTerminated()) {
    return; // the product has been left already
  }
  try {
    operation();
  } catch (const std::exception &e) {
    logException(roles.platform.desktop, name, e);
  }
}

} // namespace sonorel
