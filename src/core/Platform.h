// Everything the controller needs from outside: one reference for each interface to the platform, and the values that
// the composition knows. All of it must outlive the controller.
#pragma once

#include "platform/ApplicationPaths.h"
#include "platform/Clock.h"
#include "platform/Datagrams.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/Identifiers.h"
#include "platform/Loop.h"
#include "platform/Metadata.h"
#include "platform/Notifications.h"
#include "platform/Power.h"
#include "platform/Processes.h"
#include "platform/PropertyLists.h"
#include "platform/RunningApplications.h"
#include "platform/Scripts.h"
#include "platform/ServiceBrowser.h"
#include "platform/UserInterface.h"
#include "platform/Worker.h"

#include <QString>

#include <functional>

namespace sonorel {

struct Platform {
  FileSystem &files;
  Processes &processes;
  Loop &loop;
  Clock &clock;
  Worker &worker;
  Identifiers &identifiers;
  PropertyLists &propertyLists;
  Notifications &notifications;
  RunningApplications &runningApplications;
  Metadata &metadata;
  Scripts &scripts;
  ServiceBrowser &serviceBrowser;
  Datagrams &datagrams;
  Power &power;
  Desktop &desktop;
  UserInterface &userInterface;
};

// The exit statuses that the controller gives.
inline constexpr int kEnded = 0;
inline constexpr int kNotStarted = 1;

struct ControllerValues {
  QString homePath; // the user's home folder, no "/" at the end
  QString bundlePath = kBundlePath.toString();
  QString backupFolder;  // the old and new favourites files of each product, no "/" at the end
  QString temporaryMark; // stands in the names of this client's temporary files; empty: not known
  // False for a path that means something inside the client and that nobody else may name. Any thread.
  std::function<bool(const QString &)> isOutside = [](const QString &) { return true; };
  // Any thread: that many received drops have found their end.
  std::function<void(quint32)> dropsFinished = [](quint32) {};
  // Controller's thread, once, before the automatic connection: drops are observed and the door may open; false when
  // the start-up has failed and the program is about to end.
  std::function<void(bool)> initialised = [](bool) {};
};

} // namespace sonorel
