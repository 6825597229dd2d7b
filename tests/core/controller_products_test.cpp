// Products found on the network, through the whole controller: shown, taken over, chosen, woken, connected.
#include "ControllerFixture.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const auto kRow = u"Vaultbox 1 (den,Kitchen)"_s;

ResolvedService den(const QString &address = u"192.168.1.21"_s) {
  return {{u"den [00-1A-2B-3C-4D-5E]"_s, u"_qxproduct_-1._tcp"_s, u"local"_s},
          u"den.local"_s,
          address,
          445,
          {{"LOCATION", QByteArray("Kitchen\0", 8)},
           {"PRODUCT_NAME", QByteArray("Vaultbox 1\0", 11)},
           {"PRODUCT_SERIALNO", QByteArray("S1\0", 3)}}};
}

class ControllerProductsTest : public ControllerTest {
protected:
  void announce(const ResolvedService &service) {
    fakes.serviceBrowser.appear(service.service);
    fakes.serviceBrowser.answer(service);
    fakes.loop.runPosted();
  }
  // Connected to a product by its address, with another one, without a password, below it in the list.
  void startConnectedWithAnother() {
    const QVariantMap byHand{{u"Detection Type"_s, u"1"_s}};
    QVariantMap first = byHand;
    first.insert({{u"IP Address"_s, u"192.168.1.20"_s},
                  {u"Is Selected"_s, u"Yes"_s},
                  {u"Password"_s, fakes.propertyLists.archive(u"p@ss"_s)}});
    QVariantMap second = byHand;
    second.insert({{u"IP Address"_s, u"192.168.1.30"_s}, {u"Is Selected"_s, u"No"_s}});
    fakes.putDictionary(fakes.paths.productsDetailsDictFilePath,
                        {{u"Selected Devices"_s, QVariantList{first, second}}});
    start();
    ASSERT_TRUE(state().connected);
  }
  void select(int row) {
    controller->selectProduct(row, state().selectedProducts.at(row));
    fakes.loop.runPosted();
  }
  // The products that were mounted, by their addresses.
  QStringList mounted() const {
    QStringList addresses;
    for (const ToolRequest &request : fakes.processes.requests) {
      if (request.program == u"/sbin/mount"_s) {
        addresses.append(request.arguments.at(2).section(u'@', 1).section(u'/', 0, 0));
      }
    }
    return addresses;
  }
  QStringList questions() const {
    QStringList open;
    for (const Question &question : fakes.userInterface.questions) {
      open.append(question.message + u'|' + question.informativeText);
    }
    return open;
  }
  QVariantMap list() { return fakes.dictionary(fakes.paths.productsDetailsDictFilePath); }
  UserInterfaceState state() { return fakes.userInterface.last(); }
};

} // namespace

TEST_F(ControllerProductsTest, BrowsesAfterTheAutomaticConnectionHasBeenTried) {
  selectProduct(u"p@ss"_s);
  QString browsedWhileMounting = u"never mounted"_s;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/sbin/mount"_s) {
      browsedWhileMounting = fakes.serviceBrowser.type;
    }
    return std::nullopt;
  };
  start();
  EXPECT_EQ(browsedWhileMounting, QString());
  EXPECT_EQ(fakes.serviceBrowser.type, u"_qxproduct_-1._tcp."_s);
  EXPECT_EQ(fakes.serviceBrowser.domain, QString());
}

TEST_F(ControllerProductsTest, FindsProductsAlsoWhenTheAutomaticConnectionBroke) {
  selectProduct(u"p@ss"_s);
  fakes.processes.onRun = [this](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/sbin/mount"_s) { // what is found out of the product cannot be stored
      fakes.files.failPath(fakes.paths.PFPath, FailureKind::Other);
    }
    return std::nullopt;
  };
  start();
  EXPECT_TRUE(fakes.desktop.logged(u"Exception in ---> <AppController><awakeFromNib> "_s));
  announce(den());
  EXPECT_EQ(state().detectedProducts, QStringList({kRow}));
  EXPECT_FALSE(state().busy);
  EXPECT_FALSE(state().connectionIndicator);
}

TEST_F(ControllerProductsTest, ShowsTheGlyphOfTheLanguageThatItStartedWith) {
  start();
  EXPECT_EQ(state().checkMark, u"\u2713"_s);
}

TEST_F(ControllerProductsTest, ProductThatIsFoundIsShownTakenOverWokenAndConnected) {
  start();
  announce(den());
  EXPECT_EQ(state().detectedProducts, QStringList({kRow}));
  controller->addDetectedProduct(0, kRow);
  fakes.loop.runPosted();
  EXPECT_EQ(state().selectedProducts, QStringList({kRow}));
  EXPECT_EQ(state().dockMenuProducts, QStringList({u"Vaultbox 1 (Kitchen, den)"_s}));
  controller->selectProduct(0, kRow);
  fakes.loop.runPosted();
  ASSERT_TRUE(state().passwordWanted);
  EXPECT_TRUE(fakes.datagrams.sent.isEmpty()) << "woken when it is connected to";
  controller->enterPassword(u"secret"_s);
  fakes.loop.runPosted();
  EXPECT_TRUE(state().connected);
  ASSERT_EQ(fakes.datagrams.sent.size(), 1);
  EXPECT_EQ(fakes.datagrams.sent.first().bytes,
            QByteArray(6, '\xFF') + QByteArray::fromHex("001a2b3c4d5e").repeated(16));
  for (const ToolRequest &request : fakes.processes.requests) {
    if (request.program == u"/sbin/mount"_s) {
      EXPECT_EQ(request.arguments.at(2), u"//vaultbox:secret@192.168.1.21/VB-SHARE$"_s);
    }
  }
}

TEST_F(ControllerProductsTest, ProductsFoundBeforeTheQuitAreForgotten) {
  start();
  announce(den());
  ASSERT_TRUE(list().contains(u"Detected Devices"_s));
  controller->quit();
  fakes.loop.runPosted();
  ASSERT_EQ(fakes.userInterface.quitStatus, 0);
  EXPECT_EQ(fakes.serviceBrowser.type, QString());
  fakes.serviceBrowser.answer(den());
  fakes.loop.runPosted();
  EXPECT_FALSE(list().contains(u"Detected Devices"_s));
}

TEST_F(ControllerProductsTest, RefusedQuitKeepsLookingForProducts) {
  startConnected();
  deliver(u"Party"_s, {song(u"One"_s)});
  controller->quit();
  fakes.loop.runPosted();
  ASSERT_EQ(fakes.userInterface.quitStatus, std::nullopt);
  EXPECT_EQ(fakes.serviceBrowser.type, u"_qxproduct_-1._tcp."_s);
  announce(den());
  EXPECT_EQ(state().detectedProducts, QStringList({kRow}));
  carry();
}

TEST_F(ControllerProductsTest, TellsWhatIsWaitedForAfterAProductWasWoken) {
  start();
  announce(den());
  controller->addDetectedProduct(0, kRow);
  controller->selectProduct(0, kRow);
  fakes.loop.runPosted();
  QStringList shownWhileMounting;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/sbin/mount"_s) {
      shownWhileMounting.append(state().messageLog);
    }
    return std::nullopt;
  };
  fakes.processes.mountAnswers = {{1, "no route", false}, {1, "no route", false}, {1, "no route", false}};
  controller->enterPassword(u"secret"_s);
  fakes.loop.runPosted();
  const auto waiting = u"The product was woken. It may take a minute until it answers."_s;
  EXPECT_EQ(shownWhileMounting, QStringList({waiting, waiting, waiting}));
  EXPECT_EQ(state().messageLog, QString()) << "nothing is waited for any more";
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_TRUE(state().connected);
  EXPECT_EQ(state().messageLog, QString());
}

TEST_F(ControllerProductsTest, SaysNothingOfWaitingWhenNothingWasWoken) {
  selectProduct(u"p@ss"_s);
  QString shown = u"never mounted"_s;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program == u"/sbin/mount"_s) {
      shown = state().messageLog;
    }
    return std::nullopt;
  };
  start();
  EXPECT_EQ(shown, QString());
}

TEST_F(ControllerProductsTest, ProductChosenWhileTheShareWasSilentIsNotTakenForTheConnectedOne) {
  startConnectedWithAnother();
  fakes.files.setUnknown(kPoint, true);
  select(1);
  ASSERT_TRUE(state().passwordWanted);
  controller->cancelPassword();
  fakes.files.setUnknown(kPoint, false);
  fakes.loop.runPosted();
  select(1);
  EXPECT_TRUE(state().passwordWanted) << "it was only chosen: the first one is still the one connected to";
  controller->enterPassword(u"secret"_s);
  fakes.loop.runPosted();
  EXPECT_EQ(mounted(), QStringList({u"192.168.1.20"_s, u"192.168.1.30"_s}));
}

TEST_F(ControllerProductsTest, ChoiceDuringATransferIsRefusedAlsoWhileTheShareIsSilentOrLost) {
  startConnectedWithAnother();
  deliver(u"Party"_s, {song(u"One"_s)});
  fakes.files.setUnknown(kPoint, true);
  select(1);
  const auto refusal =
      u"Auracore 5 cannot be disconnected now.|A transfer is running. Wait until it has finished, or "
      u"cancel it, and then disconnect."_s;
  EXPECT_EQ(questions(), QStringList({refusal}));
  EXPECT_FALSE(state().passwordWanted);
  fakes.files.unmount(kPoint);
  select(1);
  EXPECT_EQ(questions(), QStringList({refusal, refusal}));
  EXPECT_FALSE(state().passwordWanted);
  carry();
  controller->connect();
  fakes.loop.runPosted();
  EXPECT_EQ(mounted(), QStringList({u"192.168.1.20"_s, u"192.168.1.20"_s})) << "what was to be connected to stays";
}

TEST_F(ControllerProductsTest, FavouritesAreKeptForTheProductConnectedNotForTheOneChosen) {
  const QString addressFile = kSystemFolder + u"MacIPAdress.orv"_s;
  fakes.files.mount(kPoint);
  fakes.files.erase(addressFile);
  fakes.files.unmount(kPoint);
  startConnectedWithAnother();
  fakes.files.setUnknown(kPoint, true);
  select(1);
  controller->cancelPassword();
  fakes.files.setUnknown(kPoint, false);
  deliver(u"Party"_s, {song(u"One"_s)});
  carry();
  EXPECT_TRUE(fakes.files.exists(u"/Users/anna/Backup/_192.168.1.20"_s));
  EXPECT_FALSE(fakes.files.exists(u"/Users/anna/Backup/_192.168.1.30"_s));
}

// The connection to the other one fails half-way, and takes drops all the same.
TEST_F(ControllerProductsTest, WhatASleepBrokeOffIsNotListedOnOneWhoseHardwareAddressCannotBeRead) {
  startConnectedWithAnother();
  deliver(u"@~Evening@~"_s, {song(u"One"_s), song(u"Two"_s)});
  sleepInTheSecondCopy();
  fakes.power.wake();
  fakes.files.failPath(kSystemFolder + u"MacIPAdress.orv"_s, FailureKind::Other);
  select(1);
  controller->enterPassword(u"secret"_s);
  fakes.loop.runPosted();
  ASSERT_EQ(mounted().constLast(), u"192.168.1.30"_s);
  deliver(u"@~Night@~"_s, {song(u"Three"_s)});
  carry();
  EXPECT_EQ(lists(), QStringList({u"@~Night@~: 1"_s}));
}
