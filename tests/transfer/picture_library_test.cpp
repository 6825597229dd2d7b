#include "transfer/PictureLibrary.h"

#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeDesktop.h"
#include "support/FakeFileSystem.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

QVariantMap entry(const QString &image, const QString &thumb) {
  return {{u"ImagePath"_s, image}, {u"ThumbPath"_s, thumb}};
}

bool same(const QString &a, const QString &b) {
  return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

// What the tables must agree with: the list walked from its first key on, for one path.
QString walked(const QVariantMap &list, const QString &path) {
  if (path.split(u'/').contains(u"Originals"_s)) {
    return path;
  }
  QString other;
  if (path.contains(u"/Modified/"_s)) {
    other = QString(path).replace(u"/Modified/"_s, u"/Data/"_s);
  } else if (path.contains(u"/Data/"_s)) {
    other = QString(path).replace(u"/Data/"_s, u"/Modified/"_s);
  }
  for (const QVariant &value : list) {
    const QString image = value.toMap().value(u"ImagePath"_s).toString();
    const QString thumb = value.toMap().value(u"ThumbPath"_s).toString();
    if (same(image, path) || same(thumb, path) || same(thumb, other)) {
      return image.isEmpty() ? path : image;
    }
  }
  return path;
}

class ChangePhotosPathsTest : public testing::Test {
protected:
  QStringList mapped(const QStringList &paths) {
    return changePhotosPaths(paths, u"/Users/me"_s, files, lists, desktop);
  }
  void putLibrary(const QByteArray &bytes) { files.put(u"/Users/me/Pictures/iPhoto Library/AlbumData.xml"_s, bytes); }

  FakeFileSystem files;
  LibplistPropertyLists lists;
  FakeDesktop desktop;
};

} // namespace

TEST_F(ChangePhotosPathsTest, ThumbnailsAndEditedCopiesBecomeTheImage) {
  putLibrary("<plist version=\"1.0\"><dict><key>Master Image List</key><dict>"
             "<key>10</key><dict><key>ImagePath</key><string>/P/2008/Lake.jpg</string>"
             "<key>ThumbPath</key><string>/P/Data/2008/Lake.jpg</string></dict>"
             "<key>11</key><dict><key>ImagePath</key><string>/P/2008/Hill.jpg</string>"
             "<key>ThumbPath</key><string>/P/Modified/2008/Hill.jpg</string></dict>"
             "</dict></dict></plist>");
  EXPECT_EQ(mapped({u"/p/data/2008/LAKE.jpg"_s, u"/P/Data/2008/Hill.jpg"_s, u"/P/Modified/2008/Lake.jpg"_s,
                    u"/P/2008/HILL.JPG"_s, u"/elsewhere/Lake.jpg"_s}),
            (QStringList{u"/P/2008/Lake.jpg"_s, u"/P/2008/Hill.jpg"_s, u"/P/2008/Lake.jpg"_s, u"/P/2008/Hill.jpg"_s,
                         u"/elsewhere/Lake.jpg"_s}));
  EXPECT_TRUE(desktop.lines.isEmpty());
}

TEST(PictureLibrary, NothingBelowOriginalsIsChanged) {
  const PictureLibrary library({{u"1"_s, entry(u"/P/a.jpg"_s, u"/P/Originals/a.jpg"_s)},
                                {u"2"_s, entry(u"/P/b.jpg"_s, u"/P/originals/b.jpg"_s)}});
  EXPECT_EQ(library.imagePath(u"/P/Originals/a.jpg"_s), u"/P/Originals/a.jpg"_s);
  EXPECT_EQ(library.imagePath(u"/P/originals/b.jpg"_s), u"/P/b.jpg"_s);
}

TEST(PictureLibrary, TheLowestKeyInTextOrderWins) {
  const PictureLibrary library({{u"9"_s, entry(u"/P/nine.jpg"_s, u"/P/t.jpg"_s)},
                                {u"10"_s, entry(u"/P/ten.jpg"_s, u"/P/T.jpg"_s)},
                                {u"11"_s, entry(u"/P/t.jpg"_s, u"/P/other.jpg"_s)}});
  EXPECT_EQ(library.imagePath(u"/P/t.JPG"_s), u"/P/ten.jpg"_s);
}

TEST(PictureLibrary, EmptyAndForeignEntriesMatchNothing) {
  const PictureLibrary library({{u"1"_s, entry({}, u"/P/t.jpg"_s)},
                                {u"2"_s, entry(u"/P/b.jpg"_s, {})},
                                {u"3"_s, u"no entry"_s},
                                {u"4"_s, QVariantMap{{u"ImagePath"_s, 7}, {u"ThumbPath"_s, u"/P/u.jpg"_s}}}});
  EXPECT_EQ(library.imagePath(u"/P/t.jpg"_s), u"/P/t.jpg"_s);
  EXPECT_EQ(library.imagePath(u"/P/u.jpg"_s), u"/P/u.jpg"_s);
  EXPECT_EQ(library.imagePath({}), QString());
}

TEST_F(ChangePhotosPathsTest, MissingAndBrokenLibrariesMapNothingAndSaySo) {
  const QStringList paths{u"/P/Data/a.jpg"_s};
  EXPECT_EQ(mapped(paths), paths);
  EXPECT_TRUE(desktop.logged(u"AlbumData.xml"_s));
  for (const char *broken : {"", "no list at all", "<plist version=\"1.0\"><dict/></plist>",
                             "<plist version=\"1.0\"><dict><key>Master Image List</key><array/></dict></plist>"}) {
    desktop.lines.clear();
    putLibrary(broken);
    EXPECT_EQ(mapped(paths), paths) << broken;
    EXPECT_EQ(desktop.lines.size(), 1) << broken;
  }
}

TEST(PictureLibrary, FoldsEveryCharacterAsTheComparisonDoes) {
  for (char32_t character = 1; character <= QChar::LastValidCodePoint; ++character) {
    if (QChar::isSurrogate(character)) {
      continue;
    }
    if (character > 0x1FFFF) { // no letters there
      ASSERT_EQ(QChar::toCaseFolded(character), character);
      continue;
    }
    const QString text = QString::fromUcs4(&character, 1);
    const QString folded = foldedCase(text);
    ASSERT_EQ(folded.size(), text.size()) << static_cast<quint32>(character);
    ASSERT_EQ(text.compare(folded, Qt::CaseInsensitive), 0) << static_cast<quint32>(character);
    ASSERT_EQ(foldedCase(folded), folded) << static_cast<quint32>(character);
    // Whatever the comparison takes for equal has one folded form.
    for (const QString &other : {text.toUpper(), text.toLower(), text.toCaseFolded()}) {
      ASSERT_EQ(text.compare(other, Qt::CaseInsensitive) == 0, folded == foldedCase(other))
          << static_cast<quint32>(character);
    }
  }
  const QString half(QChar(0xD801));
  EXPECT_EQ(foldedCase(half + u"A"_s), half + u"a"_s);
}

TEST(PictureLibrary, AgreesWithAWalkOverRandomLibraries) {
  std::mt19937 random(20260131);
  const auto pick = [&random](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
  const QStringList parts{u"Data"_s, u"data"_s,   u"Modified"_s,    u"MODIFIED"_s,   u"Originals"_s,
                          u"a"_s,    u"A"_s,      u"Straße"_s,      u"STRASSE"_s,    u"Ä"_s,
                          u"ä"_s,    u"\u0130"_s, u"\U00010400x"_s, u"\U00010428x"_s};
  const auto path = [&] {
    QString text;
    for (int i = pick(4); i >= 0; --i) {
      text += u'/' + parts[pick(static_cast<int>(parts.size()))];
    }
    return pick(12) == 0 ? QString() : text;
  };
  int changed = 0;
  for (int round = 0; round < 400; ++round) {
    QVariantMap list;
    for (int i = pick(40); i > 0; --i) {
      list.insert(QString::number(pick(120)), entry(path(), path()));
    }
    const PictureLibrary library(list);
    for (int i = 0; i < 40; ++i) {
      const QString wanted = path();
      const QString expected = walked(list, wanted);
      ASSERT_EQ(library.imagePath(wanted), expected) << wanted.toStdString();
      changed += expected == wanted ? 0 : 1;
    }
  }
  EXPECT_GT(changed, 500); // the libraries and the paths do meet
}

} // namespace sonorel::test
