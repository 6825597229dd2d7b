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
