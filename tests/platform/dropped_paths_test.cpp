#include "platform/linux/DroppedPaths.h"
#include "support/FakeDesktop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

class DroppedPathsTest : public testing::Test {
protected:
  test::FakeDesktop desktop;
  FromOutside fromOutside = [](const QString &path, QString *reason) -> std::optional<QString> {
    if (!path.startsWith(u'/') || path.startsWith(u"/own/"_s)) {
      *reason = u"not welcome: "_s + path;
      return std::nullopt;
    }
    return QString(path).replace(u"//"_s, u"/"_s);
  };

  std::optional<Notification> cleaned(const QStringList &files) {
    return withCleanPaths({u"Jazz"_s, {{u"draggedFiles"_s, files}}}, fromOutside, desktop);
  }
};

} // namespace

TEST_F(DroppedPathsTest, CleansPathsAndKeepsTheirOrder) {
  const auto notification = cleaned({u"/b//x.mp3"_s, u"@~Radio One"_s, u"/a.mp3"_s});
  ASSERT_TRUE(notification);
  EXPECT_EQ(notification->object, u"Jazz"_s);
  EXPECT_EQ(notification->userInfo.value(u"draggedFiles"_s).toStringList(),
            (QStringList{u"/b/x.mp3"_s, u"@~Radio One"_s, u"/a.mp3"_s}));
  EXPECT_TRUE(desktop.lines.isEmpty());
}

TEST_F(DroppedPathsTest, RefusesWhatIsNoAbsolutePathAndSaysSo) {
  const auto notification = cleaned({u"music/x.mp3"_s, u"/y.mp3"_s, u"file:///z.mp3"_s, u"/own/secret"_s, QString()});
  ASSERT_TRUE(notification);
  EXPECT_EQ(notification->userInfo.value(u"draggedFiles"_s).toStringList(), (QStringList{u"/y.mp3"_s}));
  EXPECT_EQ(desktop.lines, (QStringList{u"a dropped item was refused: not welcome: music/x.mp3"_s,
                                        u"a dropped item was refused: not welcome: file:///z.mp3"_s,
                                        u"a dropped item was refused: not welcome: /own/secret"_s,
                                        u"a dropped item was refused: not welcome: "_s}));
}

TEST_F(DroppedPathsTest, NothingLeftIsNoDrop) {
  EXPECT_FALSE(cleaned({u"x"_s, u"y"_s}));
  EXPECT_TRUE(cleaned({})); // an empty drop has its own meaning
}

TEST_F(DroppedPathsTest, ManyBadPathsDoNotFloodTheLog) {
  EXPECT_FALSE(cleaned(QStringList(100000, u"relative"_s)));
  EXPECT_EQ(desktop.lines.size(), 11);
  EXPECT_EQ(desktop.lines.last(), u"99990 more dropped items were refused"_s);
}

TEST_F(DroppedPathsTest, CleansEveryAlbum) {
  const QVariantList albums{QVariantMap{{u"albumName"_s, u"A"_s}, {u"draggedFiles"_s, QStringList{u"/a//1"_s}}},
                            QVariantMap{{u"albumName"_s, u"B"_s}, {u"draggedFiles"_s, QStringList{u"relative"_s}}}};
  const auto notification = withCleanPaths({QString(), {{u"PhotoData"_s, albums}}}, fromOutside, desktop);
  ASSERT_TRUE(notification);
  const QVariantList left = notification->userInfo.value(u"PhotoData"_s).toList();
  ASSERT_EQ(left.size(), 2);
  EXPECT_EQ(left[0].toMap().value(u"draggedFiles"_s).toStringList(), QStringList{u"/a/1"_s});
  EXPECT_EQ(left[1].toMap().value(u"albumName"_s).toString(), u"B"_s);
  EXPECT_TRUE(left[1].toMap().value(u"draggedFiles"_s).toStringList().isEmpty());
}

TEST_F(DroppedPathsTest, BookmarksAreNoPaths) {
  const QVariantMap info{{u"Titles"_s, QStringList{u"a"_s}}, {u"Urls"_s, QStringList{u"http://b"_s}}};
  const auto notification = withCleanPaths({QString(), info}, fromOutside, desktop);
  ASSERT_TRUE(notification);
  EXPECT_EQ(notification->userInfo, info);
}
