// The one place that knows every concrete class: builds the services of Linux, the door and the controller, and runs
// the controller's thread. Lives on Qt's main thread.
#pragma once

#include "app/Door.h"
#include "app/DoorInterface.h"
#include "app/DropCounter.h"
#include "core/ApplicationController.h"
#include "platform/linux/AvahiServiceBrowser.h"
#include "platform/linux/DBusApplications.h"
#include "platform/linux/DBusNotifications.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxDesktop.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxLoop.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/LinuxScripts.h"
#include "platform/linux/LinuxWorker.h"
#include "platform/linux/LogindPower.h"
#include "platform/linux/PathMap.h"
#include "platform/linux/QtIdentifiers.h"
#include "platform/linux/TagLibMetadata.h"
#include "platform/linux/UdpDatagrams.h"

#include <functional>
#include <memory>
#include <thread>

namespace sonorel {

struct CompositionOptions {
  Roots roots;
  QString configHome;      // holds the autostart folder
  QString client;          // the program that a login item starts
  QString temporaryMark;   // stands in the names of this client's temporary files
  QString embeddedProduct; // what a new embedded product calls itself
  double pauseScale = 1.0; // multiplies the fixed pauses
  // What stands in front of the real file system, for tests; none: nothing does.
  std::function<std::unique_ptr<FileSystem>(FileSystem &)> filesInFront;
};

class Composition {
public:
  // quit is called once, on the main thread, when the client has ended its work. The data folders must stand.
  Composition(const CompositionOptions &options, const QDBusConnection &bus, std::function<void(int)> quit);
  Composition(const Composition &) = delete;
  Composition &operator=(const Composition &) = delete;
  // Ends what still runs and waits for it.
  ~Composition();

  void start();
  // As the first or a further request of the system; see ApplicationController::endRequested.
  void requestQuit();

private:
  [[nodiscard]] Platform platform();
  [[nodiscard]] ControllerValues values(const CompositionOptions &options);
  [[nodiscard]] ClientActions actions();
  [[nodiscard]] DBusNotifications::Hooks notificationHooks();
  [[nodiscard]] std::function<void(const std::exception &)> failureLog(const QString &where);
  // On the main thread, after everything that the logic has published before.
  void dropsFinished(quint32 drops);
  void openDoor(bool initialised);

  std::function<void(int)> m_quit;
  LinuxDesktop m_desktop;
  LinuxFileSystem m_files;
  std::unique_ptr<FileSystem> m_filesInFront;
  FileSystem &m_usedFiles;
  LinuxProcesses m_processes;
  LinuxClock m_clock;
  LinuxLoop m_loop;
  LinuxWorker m_worker;
  QtIdentifiers m_identifiers;
  LibplistPropertyLists m_propertyLists;
  DBusApplications m_applications;
  TagLibMetadata m_metadata;
  LinuxScripts m_scripts;
  AvahiServiceBrowser m_serviceBrowser;
  UdpDatagrams m_datagrams;
  LogindPower m_power;
  DropCounter m_dropCounter;
  Door m_door;
  DoorInterface m_userInterface;
  DBusNotifications m_notifications;
  ApplicationController m_controller;
  std::thread m_thread; // the controller's
};

} // namespace sonorel
