// The machine goes to sleep in the middle of a picture, a bookmark file and a dragged bookmark: what was broken off
// stands first in the list after the wake, and the same drop again carries it.
#include "ControllerFixture.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const auto kLost = u"The connection to the product was lost. These items were not transferred:\n"_s;

class ControllerSleepItemsTest : public ControllerTest {
protected:
  // Once: while the worker is at work.
  void sleep() {
    if (!std::exchange(m_slept, true)) {
      fakes.power.send(PowerMessage::SystemWillSleep);
    }
  }
  [[nodiscard]] bool slept() const { return m_slept; }
  void wakeAndConnect() {
    EXPECT_TRUE(m_slept);
    EXPECT_FALSE(fakes.files.isMounted(kPoint));
    EXPECT_FALSE(shown().transferring);
    EXPECT_EQ(finished, 1U);
    fakes.power.wake();
    fakes.loop.runPosted();
    EXPECT_EQ(shown().currentTab, 1);
    EXPECT_EQ(shown().progress, 0);
    listed = shown().messageLog;
    controller->connect();
    fakes.loop.runPosted();
    ASSERT_TRUE(shown().connected);
  }
  QStringList below(const QString &folder) {
    QStringList names;
    for (const QString &name : fakes.files.tree(kPoint + folder).keys()) {
      if (!name.endsWith(u'/')) {
        names.append(name);
      }
    }
    return names;
  }
  QString file(const QString &path, const QByteArray &bytes) {
    fakes.files.put(path, bytes);
    return path;
  }
  UserInterfaceState shown() { return fakes.userInterface.last(); }

  QString listed; // the log after the wake

private:
  bool m_slept = false;
};

} // namespace

TEST_F(ControllerSleepItemsTest, PictureAndFilmOfAnAlbum) {
  const QStringList items{file(u"/Users/anna/Pictures/Trip/1.jpg"_s, "one"),
                          file(u"/Users/anna/Pictures/Trip/2.avi"_s, "two"),
                          file(u"/Users/anna/Pictures/Trip/3.jpg"_s, "three")};
  const auto dropAlbum = [&] {
    const QVariantMap album{{u"albumName"_s, u"Summer"_s}, {u"draggedFiles"_s, items}};
    fakes.notifications.deliver(u"iPhoto_DragRecieved"_s, {{}, {{u"PhotoData"_s, QVariantList{album}}}});
    fakes.loop.runPosted();
    carry();
  };
  startConnected();
  int copies = 0;
  fakes.processes.onRun = [&](const ToolRequest &request) -> std::optional<ToolResult> {
    if (request.program != u"/bin/cp"_s || ++copies != 2) {
      return std::nullopt;
    }
    sleep();
    return ToolResult{ToolEnding::Stopped, -1, {}};
  };
  dropAlbum();
  wakeAndConnect();
  EXPECT_EQ(listed, kLost + u"2.avi\n3.jpg\n"_s);
  EXPECT_EQ(below(u"/Photo/Mac"_s), QStringList{u"Trip/1.jpg"_s});
  dropAlbum();
  EXPECT_EQ(copies, 4) << "what stands on the share is not copied again";
  EXPECT_EQ(below(u"/Photo/Mac"_s), (QStringList{u"Trip/1.jpg"_s, u"Trip/2.avi"_s, u"Trip/3.jpg"_s}));
  EXPECT_EQ(shown().messageLog, u"The transfer has ended."_s);
  EXPECT_EQ(finished, 2U);
}

TEST_F(ControllerSleepItemsTest, BookmarkFileThatIsBeingConverted) {
  fakes.files.makeFolders(u"/private/tmp"_s);
  const QStringList items{file(u"/Users/anna/a.webloc"_s, "a"), file(u"/Users/anna/b.webloc"_s, "b"),
                          file(u"/Users/anna/c.webloc"_s, "c")};
  startConnected();
  fakes.scripts.onConvert = [&](const QString &path) -> std::optional<QString> {
    if (path.endsWith(u"b.webloc"_s) && !slept()) {
      sleep();
      return u"the converter was stopped"_s;
    }
    file(path.chopped(7) + u".url"_s, "[InternetShortcut]\nURL=http://x/");
    return std::nullopt;
  };
  deliver(u"Finder"_s, items);
  carry();
  wakeAndConnect();
  EXPECT_EQ(listed, kLost + u"b.webloc\nc.webloc\n"_s);
  EXPECT_EQ(below(u"/Favorites/Mac"_s), QStringList{u"a.url"_s});
  for (const QString &item : items) {
    EXPECT_TRUE(fakes.files.exists(item));
  }
  EXPECT_FALSE(fakes.files.exists(u"/private/tmp/Bookmark"_s));
  deliver(u"Finder"_s, items);
  carry();
  EXPECT_EQ(below(u"/Favorites/Mac"_s), (QStringList{u"a.url"_s, u"b.url"_s, u"c.url"_s}));
  EXPECT_EQ(shown().messageLog, u"The transfer has ended."_s);
}

TEST_F(ControllerSleepItemsTest, BookmarkFileThatIsBeingPlaced) {
  const QStringList items{file(u"/Users/anna/a.url"_s, "[InternetShortcut]\nURL=http://a/"),
                          file(u"/Users/anna/b.url"_s, "[InternetShortcut]\nURL=http://b/")};
  startConnected();
  fakes.files.beforeOperation = [&](int) {
    if (fakes.files.log().endsWith(u"read /Users/anna/b.url"_s)) {
      sleep();
    }
  };
  deliver(u"Finder"_s, items);
  carry();
  wakeAndConnect();
  EXPECT_EQ(listed, kLost + u"b.url\n"_s);
  EXPECT_EQ(below(u"/Favorites/Mac"_s), QStringList{u"a.url"_s});
  EXPECT_TRUE(fakes.files.exists(u"/Users/anna/b.url"_s)) << "it stands nowhere else";
  deliver(u"Finder"_s, items);
  carry();
  EXPECT_EQ(fakes.files.bytes(kPoint + u"/Favorites/Mac/b.url"_s), QByteArray("[InternetShortcut]\nURL=http://b/"));
}

TEST_F(ControllerSleepItemsTest, DraggedBookmarkThatIsBeingWritten) {
  const auto dropPairs = [&] {
    fakes.notifications.deliver(u"safari_drag_Notification"_s,
                                {{},
                                 {{u"Titles"_s, QStringList{u"a"_s, u"b"_s, u"c"_s}},
                                  {u"Urls"_s, QStringList{u"http://a/"_s, u"http://b/"_s, u"http://c/"_s}}}});
    fakes.loop.runPosted();
    carry();
  };
  startConnected();
  fakes.files.beforeOperation = [&](int) {
    if (fakes.files.log().endsWith(u"presence /Volumes/VB-SHARE$/Favorites/Mac/b.url"_s)) {
      sleep();
    }
  };
  dropPairs();
  wakeAndConnect();
  EXPECT_EQ(listed, kLost + u"b.url\nc.url\n"_s);
  EXPECT_EQ(below(u"/Favorites/Mac"_s), QStringList{u"a.url"_s});
  dropPairs();
  EXPECT_EQ(below(u"/Favorites/Mac"_s), (QStringList{u"a.url"_s, u"b.url"_s, u"c.url"_s}));
  EXPECT_EQ(fakes.files.bytes(kPoint + u"/Favorites/Mac/c.url"_s), QByteArray("[InternetShortcut]\nURL=http://c/"));
  EXPECT_EQ(shown().messageLog, u"The transfer has ended."_s);
}
