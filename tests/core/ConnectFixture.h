// The connect flow with its real neighbours on a fake platform: a product that can be mounted and is the selected
// one. What other roles would do is a list of names.
#pragma once

#include "FakePlatform.h"
#include "core/ApplicationEvents.h"
#include "core/ConnectFlow.h"
#include "favourites/PhotoFavourites.h"

#include <gtest/gtest.h>

#include <utility>

namespace sonorel::test {

class ConnectTest : public testing::Test {
protected:
  ConnectTest() {
    fakes.install();
    fakes.files.makeFolders(fakes.paths.machineFolder);
    fakes.files.makeFolders(fakes.paths.supportFolder);
    fakes.putDictionary(fakes.paths.machinePreferences, {});
    fakes.putDictionary(fakes.paths.productsDetailsDictFilePath,
                        {{QStringLiteral("Selected Devices"),
                          QVariantList{QVariantMap{{QStringLiteral("Is Selected"), QStringLiteral("Yes")},
                                                   {QStringLiteral("Detection Type"), QStringLiteral("1")},
                                                   {QStringLiteral("IP Address"), QStringLiteral("10.0.0.2")}}}}});
    fakes.files.put(fakes.paths.mainDictPath, "old");
    settings.load();
    strings.setLanguageFile(QStringLiteral("StringsEnglish"));
    strings.reload();
    session.setUUID(QStringLiteral("{11111111-2222-3333-4444-555555555555}"));
    session.setIPAddressString(QStringLiteral("10.0.0.2"));
    session.setPasswordString(QStringLiteral("secret"));
    flow.createConnection();
  }

  // The share can be mounted.
  void prepareShare(const QString &productName = QStringLiteral("Auracore 5")) {
    mountShare(fakes.files, productName);
    fakes.files.unmount(point);
    fakes.files.erase(point);
  }
  void failMounts(int times, const QByteArray &output) {
    fakes.processes.mountAnswers.insert(fakes.processes.mountAnswers.end(), times, MountAnswer{1, output, false});
  }
  void connect() {
    flow.onConnect();
    fakes.loop.runPosted();
  }
  void disconnect() {
    flow.onDisconnect();
    fakes.loop.runPosted();
  }
  void beginTransfer() {
    const DropAnswer answer =
        board.offer({{{QueueEntry::Kind::Path, QStringLiteral("/a.mp3"), {}}}, {}, {}, {}, {}, false});
    ASSERT_EQ(answer, DropAnswer::Started);
  }

  UserInterfaceState shown() { return fakes.userInterface.last(); }
  // "message|informative text" of the open questions.
  QStringList questions() {
    fakes.loop.runPosted();
    QStringList open;
    for (const Question &question : fakes.userInterface.questions) {
      open.append(question.message + QStringLiteral("|") + question.informativeText);
    }
    return open;
  }
  qsizetype mounts() { return fakes.processes.programs().count(QStringLiteral("/sbin/mount")); }
  QString mountUrl() {
    for (const ToolRequest &request : fakes.processes.requests) {
      if (request.program == QStringLiteral("/sbin/mount")) {
        return request.arguments.value(2);
      }
    }
    return {};
  }
  bool sent(const QString &message) { return fakes.files.exists(point + QStringLiteral("/System/") + message); }
  QList<std::chrono::milliseconds> &pauses() { return fakes.clock.sleeps; }

  const QString point = QStringLiteral("/Volumes/VB-SHARE$");
  const QString kErrorConnect =
      QStringLiteral("Could not connect to the product.|Check that it is switched on and on the same network as this "
                     "computer, and that its address is correct. Then try again.");

  FakePlatform fakes;
  QStringList did;
  std::function<void()> onValidate;
  bool workerRuns = false;
  bool toldOfWaitingDrop = false;
  int attemptsEnded = 0;
  std::stop_source stop;
  std::atomic<bool> isAuthenticationError{false};

  Settings settings{fakes.files, fakes.propertyLists, fakes.paths.PFPath};
  Settings preferences{fakes.files, fakes.propertyLists, fakes.paths.preferences};
  Strings strings{fakes.files, fakes.propertyLists, resourceFolder()};
  Session session;
  TransferBoard board;
  InterfaceController interface { fakes.loop, fakes.userInterface, board, strings };
  MessageLog log{[this] { interface.fillMessageLog([this] { return log.viewText(); }); }};
  ClientMessages messages{fakes.files, fakes.desktop, strings, interface, session, standardFolders()};
  DeviceName deviceName{fakes.files, fakes.propertyLists, fakes.desktop, settings,
                        session,     standardFolders(),   fakes.paths};
  ProductList products{{fakes.files, fakes.propertyLists, fakes.desktop, strings, interface, settings, session},
                       fakes.paths.productsDetailsDictFilePath,
                       [this](const ProductTables &tables) { interface.setProducts(tables); }};
  FavouritesRewrite rewrite{{fakes.files, fakes.clock, fakes.identifiers, fakes.desktop, session},
                            standardFolders(),
                            QStringLiteral("/Users/anna/"),
                            QStringLiteral("/Users/anna/Backup")};
  PhotoFavourites photoFavourites{fakes.desktop, fakes.identifiers, session, rewrite};
  WindowTexts texts{
      fakes.files, fakes.desktop,
      settings,    strings,
      session,     interface,
      fakes.paths, [this](const QByteArray &emptyList) { photoFavourites.createIfMissing(emptyList, {}); }};
  ClientAlive clientAlive{fakes.loop,
                          {[this] { return flow.isConnected(); }, [this] { messages.sendClientAliveMessage(); }}};
  AfterConnection afterConnection{{fakes.files, fakes.propertyLists, fakes.desktop, fakes.paths},
                                  settings,
                                  session,
                                  interface,
                                  messages,
                                  deviceName,
                                  products,
                                  clientAlive,
                                  {[this] {
                                     did.append(QStringLiteral("updateDeviceName"));
                                     texts.updateDeviceName();
                                   },
                                   [this] { did.append(QStringLiteral("cleanShare")); },
                                   [this] {
                                     did.append(QStringLiteral("checkAU5SoftwareVersion"));
                                     return QStringLiteral("YES");
                                   },
                                   [this] {
                                     did.append(QStringLiteral("validateOrvFile"));
                                     if (onValidate) {
                                       onValidate();
                                     }
                                   }}};
  ConnectParts parts{interface, strings,  session, board,       log,
                     messages,  products, texts,   clientAlive, afterConnection};
  ConnectionTools tools{fakes.files,          fakes.processes, fakes.clock,
                        fakes.desktop,        settings,        [this] { return stop.get_token(); },
                        isAuthenticationError};
  ConnectFlow flow{tools,
                   parts,
                   fakes.paths.mainDictPath,
                   {[this] { did.append(QStringLiteral("eject")); },
                    [this](const QString &address) { did.append(QStringLiteral("wake ") + address); },
                    [this] { return workerRuns; }, [this] { ++attemptsEnded; },
                    [this] {
                      did.append(QStringLiteral("awaitTransfer"));
                      EXPECT_TRUE(fakes.files.isMounted(point));
                      EXPECT_FALSE(sent(QStringLiteral("ClientDisconnected.orv")));
                    },
                    [this] { return std::exchange(toldOfWaitingDrop, false); }}};
};

} // namespace sonorel::test
