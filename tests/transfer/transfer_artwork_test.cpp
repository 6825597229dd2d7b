// When the artwork of a track is asked for, and in which order with its copy.
#include "TransferWorkbench.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kName = u"ABBA-Gold-Waterloo.mp3"_s;

class TransferArtworkTest : public testing::Test {
protected:
  TransferArtworkTest() {
    bench.processes.onRun = [this](const ToolRequest &request) -> std::optional<ToolResult> {
      did.append(u"cp "_s + request.arguments[2].mid(kMusic.size()));
      return std::nullopt;
    };
    bench.clock.onSleep = [this] { did.append(u"pause"_s); };
  }
  bool place(int mode, int flag = 1) { return transfer.transferSoundFile(source, kName, mode, flag); }
  void stands(const QString &relativeName, qint64 modified = 1000) {
    bench.files.put(kMusic + relativeName, QByteArray(200'000, 'm'), modified);
  }

  TransferWorkbench bench;
  QStringList did;
  Transfer transfer{
      bench.tools, standardFolders(),
      TransferArtwork{[this](const QString &track, const std::stop_token &) { did.append(u"embed "_s + track); },
                      [this](const QString &track, const QString &name, bool hierarchy, const std::stop_token &) {
                        did.append(u"picture "_s + track + u' ' + name + (hierarchy ? u" folders"_s : u" flat"_s));
                      }}};
  const QString source = bench.song(u"/m/ABBA/Gold/01.mp3"_s, {});
};

} // namespace

TEST_F(TransferArtworkTest, AnyOtherModeHasNone) {
  EXPECT_TRUE(place(0));
  EXPECT_EQ(did, QStringList{u"cp ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s});
}

TEST_F(TransferArtworkTest, IsEmbeddedBeforeTheCopy) {
  EXPECT_TRUE(place(1));
  EXPECT_EQ(did, (QStringList{u"embed /m/ABBA/Gold/01.mp3"_s, u"cp ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s}));
}

TEST_F(TransferArtworkTest, APictureFollowsTheNewCopy) {
  EXPECT_TRUE(place(2));
  EXPECT_EQ(did, (QStringList{u"cp ABBA/Gold/ABBA-Gold-Waterloo.mp3"_s,
                              u"picture /m/ABBA/Gold/01.mp3 ABBA-Gold-Waterloo.mp3 folders"_s}));
}

TEST_F(TransferArtworkTest, APictureIsNamedLikeTheCopyThatWorked) {
  bench.processes.failAt(1, exited(1));
  EXPECT_TRUE(place(2));
  EXPECT_EQ(did.last(), u"picture /m/ABBA/Gold/01.mp3 01.mp3 folders"_s);
}

TEST_F(TransferArtworkTest, NoPictureWithoutTheArtistFolder) {
  EXPECT_TRUE(place(2, 0));
  EXPECT_EQ(did, QStringList{u"cp Gold/ABBA-Gold-Waterloo.mp3"_s});
}

TEST_F(TransferArtworkTest, NoPictureAfterAFailedCopy) {
  bench.processes.onRun = [](const ToolRequest &) { return exited(1); };
  EXPECT_FALSE(place(2));
  EXPECT_EQ(did, QStringList());
}

TEST_F(TransferArtworkTest, AnIdenticalCopyGetsItsPictureToo) {
  stands(u"ABBA/Gold/"_s + kName);
  EXPECT_FALSE(place(2));
  EXPECT_EQ(did, QStringList{u"picture /m/ABBA/Gold/01.mp3 ABBA-Gold-Waterloo.mp3 folders"_s});
}

TEST_F(TransferArtworkTest, AtTheFlatLevelThePictureStandsThere) {
  stands(u"(01).mp3"_s);
  EXPECT_FALSE(place(2));
  EXPECT_EQ(did, QStringList{u"picture /m/ABBA/Gold/01.mp3 (01).mp3 flat"_s});
}

TEST_F(TransferArtworkTest, OfAReplacedFileComesBetweenThePauseAndTheCopy) {
  stands(u"ABBA/Gold/01.mp3"_s, 5000);
  EXPECT_TRUE(place(2));
  EXPECT_EQ(did,
            (QStringList{u"pause"_s, u"picture /m/ABBA/Gold/01.mp3 01.mp3 folders"_s, u"cp ABBA/Gold/01.mp3"_s}));
}

TEST_F(TransferArtworkTest, TheOwnNameIsPreferredInTheFolderTheNewOneAtTheFlatLevel) {
  stands(u"ABBA/Gold/01.mp3"_s);
  stands(u"ABBA/Gold/"_s + kName);
  EXPECT_FALSE(place(2));
  EXPECT_EQ(did, QStringList{u"picture /m/ABBA/Gold/01.mp3 01.mp3 folders"_s});
  did.clear();
  stands(u"01.mp3"_s);
  stands(kName);
  EXPECT_FALSE(place(2));
  EXPECT_EQ(did, QStringList{u"picture /m/ABBA/Gold/01.mp3 ABBA-Gold-Waterloo.mp3 flat"_s});
}

TEST_F(TransferArtworkTest, TheDriverAsksForPicturesExceptOnTheOldProduct) {
  for (const QString &product : {u"Vaultbox 1"_s, u"Auracore 5"_s, u"Auralis 5"_s}) {
    TransferWorkbench other(product);
    int pictures = 0;
    Transfer counting(
        other.tools, standardFolders(),
        TransferArtwork{[](const QString &, const std::stop_token &) { FAIL() << "never embedded by the driver"; },
                        [&](const QString &, const QString &, bool, const std::stop_token &) { ++pictures; }});
    TransferDriver driver(
        other.tools, counting, other.log, other.strings, other.session, other.view, other.worker, standardFolders(),
        u"/mainDict.xml"_s,
        {[] { return true; }, [] {}, [](bool) { return true; }, [](const TransferredKinds &) {}, [](quint32) {}});
    const QString song = other.song(u"/m/ABBA/Gold/01.mp3"_s, {});
    Drop drop;
    drop.items.append({QueueEntry::Kind::Path, song, {}});
    drop.tracks.append(song);
    EXPECT_EQ(other.board.offer(drop), DropAnswer::Started);
    driver.transferToVaultbox({});
    EXPECT_EQ(pictures, product == u"Vaultbox 1" ? 0 : 1) << product.toStdString();
  }
}

} // namespace sonorel::test
