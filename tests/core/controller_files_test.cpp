// What the client leaves on the disk, and in which order: at a start, a connection, a choice of language and an end.
#include "ControllerFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

const auto kAddressFile = u"/Volumes/VB-SHARE$/System/MacIPAdress.orv"_s;

class ControllerFilesTest : public ControllerTest {
protected:
  ControllerFilesTest() {
    fakes.files.mount(kPoint);
    fakes.files.put(kAddressFile, "192.168.1.20\n00-1A-2B-3C-4D-5E\n");
    fakes.files.unmount(kPoint);
    fakes.files.erase(kPoint);
    fakes.files.beforeOperation = [this](int) { look(); };
  }
  ~ControllerFilesTest() override { fakes.files.beforeOperation = {}; }

  // What was written since the last call: a file's name, and the keys that have another value now.
  QStringList written() {
    look();
    return std::exchange(m_written, {});
  }

private:
  void look() {
    for (auto file = m_watched.begin(); file != m_watched.end(); ++file) {
      // A share that is not mounted keeps what it holds.
      const auto bytes = fakes.files.stored(file.key());
      if (bytes != file->bytes) {
        m_written.append(file->name + changedKeys(file->bytes, bytes));
        file->bytes = bytes;
      }
    }
  }
  QString changedKeys(const std::optional<QByteArray> &before, const std::optional<QByteArray> &after) {
    if (!after) {
      return u" removed"_s;
    }
    if (!after->startsWith("<?xml")) {
      return {};
    }
    const QVariantMap old = before ? fakes.propertyLists.decode(*before).toMap() : QVariantMap();
    const QVariantMap now = fakes.propertyLists.decode(*after).toMap();
    QStringList keys;
    for (auto value = now.begin(); value != now.end(); ++value) {
      if (!old.contains(value.key()) || old.value(value.key()) != value.value()) {
        keys.append(value.key());
      }
    }
    for (auto value = old.begin(); value != old.end(); ++value) {
      if (!now.contains(value.key())) {
        keys.append(u'-' + value.key());
      }
    }
    return u": "_s + keys.join(u", "_s);
  }

  struct Watched {
    QString name;
    std::optional<QByteArray> bytes;
  };
  QMap<QString, Watched> m_watched{{fakes.paths.PFPath, {u"settings"_s, {}}},
                                   {fakes.paths.dropperPropertyFilePath, {u"drop agent"_s, {}}},
                                   {fakes.paths.machinePreferences, {u"machine-wide"_s, {}}},
                                   {fakes.paths.preferences, {u"preferences"_s, {}}},
                                   {fakes.paths.productsDetailsDictFilePath, {u"products"_s, {}}},
                                   {kSystemFolder + u"ClientConnected.orv"_s, {u"ClientConnected"_s, {}}},
                                   {kSystemFolder + u"ClientAlive.orv"_s, {u"ClientAlive"_s, {}}},
                                   {kSystemFolder + u"ClientDisconnected.orv"_s, {u"ClientDisconnected"_s, {}}}};
  QStringList m_written;
};

} // namespace

TEST_F(ControllerFilesTest, FirstStartMakesTheFilesOfTheUserAndOfTheMachine) {
  fakes.desktop.language = u"sv-SE"_s;
  start();
  EXPECT_EQ(written(),
            QStringList({u"settings: AU5SupportsUnicode, CFLGUIDBlue, CFLGUIDGreen, CFLGUIDRed, CFLGUIDYellow, "
                         u"FavoriteFolder, FirstLaunch, HelpFile, LastLanguage, MacFolder, MusicFolder, PhotoFolder, "
                         u"PlaylistID, Shared Folder, SpaceNumber, SystemFolder, Username, VideoFolder, Volume"_s,
                         u"drop agent: DeviceConnected"_s, u"machine-wide: "_s,
                         u"preferences: ArtworkOption, Language, UserFirstLaunch"_s,
                         u"preferences: Language"_s, // the system's, after the default
                         u"machine-wide removed"_s, u"machine-wide: "_s, u"settings: GUID, SpaceNumber"_s}));
}

TEST_F(ControllerFilesTest, PreferencesHoldEnglishUntilTheSystemLanguageIsKnown) {
  fakes.desktop.language = u"sv"_s;
  QVariant first;
  fakes.files.beforeOperation = [&](int) {
    if (!first.isValid() && fakes.files.exists(fakes.paths.preferences)) {
      first = fakes.dictionary(fakes.paths.preferences).value(u"Language"_s);
    }
  };
  start();
  EXPECT_EQ(first, QVariant(u"StringsEnglish"_s));
  EXPECT_EQ(fakes.dictionary(fakes.paths.preferences).value(u"Language"_s), QVariant(u"StringsSvenska"_s));
}

TEST_F(ControllerFilesTest, ChosenProductIsListedAndItsConnectionStored) {
  start();
  static_cast<void>(written());
  controller->addManualProduct(u"192.168.1.20"_s, {});
  controller->addAddedProduct(0, u"192.168.1.20"_s);
  controller->selectProduct(0, u"192.168.1.20 * "_s);
  fakes.loop.runPosted();
  EXPECT_EQ(written(), QStringList({u"products: Manually Added Devices"_s, u"products: Selected Devices"_s,
                                    u"products: Selected Devices"_s}));
  controller->enterPassword(u"right"_s);
  fakes.loop.runPosted();
  // The product hears of the client before the drop agent hears of the product.
  EXPECT_EQ(written(),
            QStringList({u"settings: IPAddress, Password"_s, u"machine-wide: IPAddress, Password, Username"_s,
                         u"settings: MACAdress"_s, u"machine-wide: MACAdress"_s, u"settings: ProductName"_s,
                         u"ClientConnected"_s, u"drop agent: DeviceConnected"_s, u"settings: PlaylistID"_s,
                         u"products: Earlier Connected Devices, Selected Devices"_s}));
}

TEST_F(ControllerFilesTest, AutomaticConnectionStoresNoPasswordAndTellsTheDropAgentFirst) {
  selectProduct(u"p@ss"_s);
  fakes.install();
  fakes.change(fakes.paths.PFPath, {{u"FirstLaunch"_s, u"No"_s}});
  fakes.putDictionary(fakes.paths.preferences,
                      {{u"Language"_s, u"StringsEnglish"_s}, {u"UserFirstLaunch"_s, u"No"_s}});
  static_cast<void>(written());
  start();
  EXPECT_EQ(written(),
            QStringList({u"machine-wide: "_s, u"settings: MACAdress, SpaceNumber"_s, u"machine-wide: MACAdress"_s,
                         u"settings: ProductName"_s, u"drop agent: DeviceConnected"_s, u"ClientConnected"_s,
                         u"settings: PlaylistID"_s, u"products: Earlier Connected Devices, Selected Devices"_s}));
}

TEST_F(ControllerFilesTest, LanguageIsSavedAtTheEndOnly) {
  startConnected();
  static_cast<void>(written());
  controller->selectLanguage(1);
  fakes.loop.runPosted();
  fakes.loop.advance(119s);
  EXPECT_EQ(written(), QStringList());
  fakes.loop.advance(1s);
  EXPECT_EQ(written(), QStringList({u"ClientAlive"_s}));
  controller->reopen(false);
  fakes.loop.runPosted();
  EXPECT_EQ(written(), QStringList({u"preferences: UserFirstLaunch"_s, u"settings: FirstLaunch"_s}));
  controller->quit();
  fakes.loop.runPosted();
  EXPECT_EQ(written(), QStringList({u"preferences: Language"_s, u"ClientDisconnected"_s}));
  EXPECT_EQ(fakes.loop.timerCount(), 0) << "neither the alive message nor the spaces";
  EXPECT_EQ(
      fakes.dictionary(fakes.paths.preferences),
      QVariantMap({{u"Language"_s, u"StringsDansk"_s}, {u"ArtworkOption"_s, 0LL}, {u"UserFirstLaunch"_s, u"No"_s}}));
}
