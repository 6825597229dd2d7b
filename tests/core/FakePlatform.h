// One whole fake platform, and the paths and values of a standard installation on it.
#pragma once

#include "core/ClientPaths.h"
#include "core/Platform.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeClock.h"
#include "support/FakeDatagrams.h"
#include "support/FakeDesktop.h"
#include "support/FakeFileSystem.h"
#include "support/FakeIdentifiers.h"
#include "support/FakeLoop.h"
#include "support/FakeMetadata.h"
#include "support/FakeNotifications.h"
#include "support/FakePower.h"
#include "support/FakeProcesses.h"
#include "support/FakeRunningApplications.h"
#include "support/FakeScripts.h"
#include "support/FakeServiceBrowser.h"
#include "support/FakeUserInterface.h"
#include "support/FakeWorker.h"
#include "support/Fixtures.h"

namespace sonorel::test {

struct FakePlatform {
  FakeFileSystem files;
  FakeProcesses processes{files};
  FakeLoop loop;
  FakeClock clock{&files};
  FakeWorker worker;
  FakeIdentifiers identifiers;
  LibplistPropertyLists propertyLists;
  FakeNotifications notifications;
  FakeRunningApplications runningApplications;
  FakeMetadata metadata;
  FakeScripts scripts;
  FakeServiceBrowser serviceBrowser;
  FakeDatagrams datagrams;
  FakePower power;
  FakeDesktop desktop;
  FakeUserInterface userInterface;

  Platform platform{files,         processes,           loop,     clock,   worker,         identifiers, propertyLists,
                    notifications, runningApplications, metadata, scripts, serviceBrowser, datagrams,   power,
                    desktop,       userInterface};
  ClientPaths paths{QStringLiteral("/Users/anna"), QStringLiteral("/Applications/Sonorel/Sonorel.app")};

  FakePlatform() {
    files.makeFolders(QStringLiteral("/Volumes"));
    files.makeFolders(QStringLiteral("/Users/anna"));
    runningApplications.applications = {{QStringLiteral("iTunes"), QStringLiteral("/Applications/Player"), {}, 0}};
  }

  // The shipped files at their places in the resource folder, and the writable property files beside the bundle.
  void install() {
    installStrings(files);
    for (const QString &name : {QStringLiteral("MacClientProperty"), QStringLiteral("DropperPropertyListFile")}) {
      const QByteArray bytes = shipped(QStringLiteral("App Data/") + name);
      files.put(resourceFolder() + QStringLiteral("App Data/") + name, bytes);
      files.put(paths.appDataFolder + name, bytes);
    }
  }
  [[nodiscard]] QVariantMap dictionary(const QString &path) {
    return propertyLists.decode(files.bytes(path)).toMap();
  }
  void putDictionary(const QString &path, const QVariantMap &values) {
    files.put(path, propertyLists.encodeXml(values));
  }
  // Changes keys of a dictionary that stands in the tree; an invalid value removes the key.
  void change(const QString &path, const QVariantMap &changes) {
    QVariantMap values = dictionary(path);
    for (auto value = changes.begin(); value != changes.end(); ++value) {
      if (value->isValid()) {
        values.insert(value.key(), value.value());
      } else {
        values.remove(value.key());
      }
    }
    putDictionary(path, values);
  }
};

} // namespace sonorel::test
