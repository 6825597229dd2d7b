// The roles that work with the share: made by the start-up as soon as the folder values are final, joined with each
// other here and nowhere else. The controller's own; see ApplicationController. Controller's thread, but for members
// whose own heads say otherwise.
#pragma once

#include "core/AfterConnection.h"
#include "core/ApplicationEvents.h"
#include "core/AutomaticConnection.h"
#include "core/ClientAlive.h"
#include "core/ConnectFlow.h"
#include "core/ShareCleanup.h"
#include "core/SleepAndWake.h"
#include "core/WakeNotice.h"
#include "core/WindowTexts.h"
#include "core/state/ShareLayout.h"
#include "favourites/PlaylistMetaData.h"
#include "favourites/ProductVersion.h"
#include "products/BonjourDiscovery.h"
#include "products/ProductSelection.h"
#include "products/WakeOnLan.h"
#include "transfer/DropIntake.h"
#include "transfer/TrackArtwork.h"
#include "transfer/TransferDriver.h"

#include <atomic>
#include <stop_token>

namespace sonorel {

struct Roles;

struct ShareRoles {
  explicit ShareRoles(Roles &roles);

  Roles &roles;
  const ShareFolders folders;
  std::atomic<bool> isAuthenticationError{false};
  std::stop_source forcedEnd; // ends a merge's wait for other clients, nothing else
  ConnectionTools connectionTools;

  // --- products ---
  ProductList products;
  ProductSelection selection;
  WakeNotice wakeNotice;
  WakeOnLan wakeOnLan;
  BonjourDiscovery discovery; // `bonjourDiscoveryObj`

  // --- messages and favourites ---
  ClientMessages messages;
  DeviceName deviceName;
  FavouritesRewrite rewrite;
  MainDictionaryFile dictionaryFile;
  MainDictionary dictionary;
  ProductVersion productVersion;
  ColourLimits limits;
  FavouritesMerge merge;
  PhotoFavourites photoFavourites;
  PlaylistMetaData playlists;

  // --- transfer ---
  MetadataCache metadataCache;
  TransferTools transferTools;
  TrackArtwork artwork;
  Transfer transfer;
  TransferDriver driver;
  DropIntake intake;

  // --- connection ---
  WindowTexts texts;
  ClientAlive clientAlive;
  ShareCleanup cleanup;
  AfterConnection afterConnection;
  ConnectParts connectParts;
  ConnectFlow connectFlow;
  AutomaticConnection automaticConnection;
  ApplicationEvents events;
  SleepAndWake sleepAndWake;

  // A fresh look at the share, which becomes the answer that is shown; any thread.
  [[nodiscard]] bool isConnected() const { return connectFlow.isConnected(); }
  void connect();
  void observeNotifications();
  void prepareProducts();
  [[nodiscard]] bool registerForPower();
  // Ends the running transfer and waits for it; controller's thread.
  void awaitTransfer();

private:
  [[nodiscard]] ConnectionTools makeConnectionTools();
  [[nodiscard]] ProductSelection::Hooks selectionHooks();
  [[nodiscard]] ConnectFlow::Hooks connectHooks();
  [[nodiscard]] PlaylistMetaData::Hooks playlistHooks();
  [[nodiscard]] TransferArtwork transferArtwork();
  [[nodiscard]] TransferDriver::Hooks driverHooks();
  [[nodiscard]] DropIntake::Hooks intakeHooks();
  // A drop that comes when the program is about to end is over at once.
  void observe(const QString &name, void (DropIntake::*handler)(const Notification &));
  void dropsFinished(quint32 drops);
  [[nodiscard]] AfterConnection::Hooks afterConnectionHooks();
  [[nodiscard]] AutomaticConnection::Hooks automaticHooks();
  [[nodiscard]] ApplicationEvents::Hooks eventHooks();
  [[nodiscard]] SleepAndWake::Hooks sleepHooks();
  void powerOperation(const QString &name, const std::function<void()> &operation);
};

} // namespace sonorel
