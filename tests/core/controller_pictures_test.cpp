// Albums, bookmarks and opened files, from the drop agent's notification to the share.
#include "ControllerFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;
using namespace std::chrono_literals;

namespace {

class ControllerPicturesTest : public ControllerTest {
protected:
  QString picture(const QString &path) {
    fakes.files.put(path, "picture");
    return path;
  }
  void deliverAlbum(const QString &name, const QStringList &paths) {
    const QVariantMap album{{u"albumName"_s, name}, {u"draggedFiles"_s, paths}};
    fakes.notifications.deliver(u"iPhoto_DragRecieved"_s, {{}, {{u"PhotoData"_s, QVariantList{album}}}});
    fakes.loop.runPosted();
  }
};

} // namespace

TEST_F(ControllerPicturesTest, CarriesADroppedAlbumAndCallsNothingFailed) {
  startConnected();
  deliverAlbum(u"Summer"_s, {picture(u"/Users/anna/Pictures/Trip/1.jpg"_s)});
  carry();
  EXPECT_TRUE(fakes.files.exists(kPoint + u"/Photo/Mac/Trip/1.jpg"_s));
  EXPECT_TRUE(fakes.files.exists(kSystemFolder + u"PhotoFileCollection.orv"_s));
  EXPECT_EQ(fakes.userInterface.last().messageLog, u"The transfer has ended."_s);
  EXPECT_EQ(finished, 1U);
}

TEST_F(ControllerPicturesTest, TakesTheLibrarysImageForAThumbnail) {
  const QVariantMap entry{{u"ImagePath"_s, u"/Users/anna/Pictures/Trip/1.jpg"_s},
                          {u"ThumbPath"_s, u"/Users/anna/Pictures/Data/1.jpg"_s}};
  fakes.putDictionary(u"/Users/anna/Pictures/iPhoto Library/AlbumData.xml"_s,
                      {{u"Master Image List"_s, QVariantMap{{u"7"_s, entry}}}});
  picture(u"/Users/anna/Pictures/Trip/1.jpg"_s);
  startConnected();
  deliverAlbum(u"Summer"_s, {picture(u"/Users/anna/Pictures/Data/1.jpg"_s)});
  carry();
  EXPECT_TRUE(fakes.files.exists(kPoint + u"/Photo/Mac/Trip/1.jpg"_s));
  EXPECT_FALSE(fakes.files.exists(kPoint + u"/Photo/Mac/Data/1.jpg"_s));
}

TEST_F(ControllerPicturesTest, LibraryCannotNameTheClientsOwnFiles) {
  const QVariantMap entry{{u"ImagePath"_s, u"/Library/Own/1.jpg"_s}, {u"ThumbPath"_s, u"/Users/anna/Data/1.jpg"_s}};
  fakes.putDictionary(u"/Users/anna/Pictures/iPhoto Library/AlbumData.xml"_s,
                      {{u"Master Image List"_s, QVariantMap{{u"7"_s, entry}}}});
  picture(u"/Library/Own/1.jpg"_s);
  values.isOutside = [](const QString &path) { return !path.startsWith(u"/Library/"_s); };
  startConnected();
  deliverAlbum(u"Summer"_s, {picture(u"/Users/anna/Data/1.jpg"_s)});
  carry();
  EXPECT_TRUE(fakes.files.exists(kPoint + u"/Photo/Mac/Data/1.jpg"_s));
  EXPECT_FALSE(fakes.files.exists(kPoint + u"/Photo/Mac/Own/1.jpg"_s));
}

TEST_F(ControllerPicturesTest, WritesADroppedBookmark) {
  startConnected();
  fakes.notifications.deliver(
      u"safari_drag_Notification"_s,
      {{}, {{u"Titles"_s, QStringList{u"News"_s}}, {u"Urls"_s, QStringList{u"http://x/"_s}}}});
  fakes.loop.runPosted();
  carry();
  EXPECT_EQ(fakes.files.bytes(kPoint + u"/Favorites/Mac/News.url"_s),
            QByteArray("[InternetShortcut]\nURL=http://x/"));
}

TEST_F(ControllerPicturesTest, HandsOpenedFilesToTheDropAfterASecond) {
  startConnected();
  const auto before = fakes.clock.monotonicNow();
  controller->openFiles({u"/Users/anna/a.jpg"_s, u"/Users/anna/b.webloc"_s});
  fakes.loop.runPosted();
  EXPECT_GE(fakes.clock.monotonicNow() - before, 1s);
  ASSERT_EQ(fakes.notifications.posted.size(), 1);
  EXPECT_EQ(fakes.notifications.posted[0].first, u"TrackChute_DragRecieved"_s);
  EXPECT_EQ(fakes.notifications.posted[0].second.object, u"Finder"_s);
  EXPECT_EQ(fakes.notifications.posted[0].second.userInfo.value(u"draggedFiles"_s).toStringList(),
            (QStringList{u"/Users/anna/a.jpg"_s, u"/Users/anna/b.webloc"_s}));
}
