// The resource folder as the build makes it and the installation carries it: what the program asks for by name is
// there.
#include "core/Languages.h"
#include "support/Fixtures.h"

#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

// `iconImageType` and the icon of the alerts; "Transfer" is no image, it alternates the first two.
const QStringList kImages{u"Connect"_s, u"Disconnect"_s, u"NewAppIcon"_s, u"AppIcon"_s};

QByteArray built(const QString &name) {
  std::ifstream file(std::string(SONOREL_BUILT_RESOURCES) + "/" + name.toStdString(), std::ios::binary);
  EXPECT_TRUE(file.good()) << name.toStdString();
  return QByteArray::fromStdString(std::string(std::istreambuf_iterator<char>(file), {}));
}

// The files of a folder below one of the two roots, by their paths.
std::set<std::string> filesBelow(const char *root) {
  std::set<std::string> names;
  for (const auto &entry : std::filesystem::recursive_directory_iterator(root)) {
    if (entry.is_regular_file() && entry.path().filename() != "CMakeLists.txt") {
      names.insert(entry.path().lexically_relative(root).string());
    }
  }
  return names;
}

} // namespace

TEST(BuiltResources, HoldEveryShippedFileUnchanged) {
  const std::set<std::string> shippedFiles = filesBelow(SONOREL_RESOURCES);
  EXPECT_TRUE(shippedFiles.contains("App Data/MacClientProperty"));
  for (const std::string &name : shippedFiles) {
    const QString file = QString::fromStdString(name);
    EXPECT_EQ(built(file), shipped(file)) << name;
  }
}

TEST(BuiltResources, HoldTheStringsOfEveryLanguage) {
  for (const QString &file : languageFiles()) {
    EXPECT_FALSE(built(file).isEmpty()) << file.toStdString();
  }
}

TEST(BuiltResources, HoldTheEmptyPhotoFavourites) {
  const QByteArray file = built(u"PhotoFavorites.orv"_s);
  EXPECT_EQ(file.left(69), QByteArray("\x03\0\0\0\x26\0\0\0{1CF4E0EA-EA27-4242-A4BC-993CCA17BFB2}"
                                      "\x0E\0\0\0PhotoFavorites\x01\0\0\0"
                                      "1",
                                      69));
  ASSERT_GT(file.size(), 81);
  EXPECT_EQ(file.mid(70, 3), QByteArray(3, '\0'));
  EXPECT_EQ(file.at(69), static_cast<char>(file.size() - 73)) << "the length of the body";
  EXPECT_EQ(file.mid(73, 4), QByteArray("\x1B\0\0\0", 4)) << "the length of the list";
  EXPECT_EQ(file.mid(77, 4), QByteArray(1, static_cast<char>(file.size() - 81)) + QByteArray(3, '\0'));
  EXPECT_EQ(qUncompress(QByteArray("\0\0\0\x1B", 4) + file.mid(81)),
            QByteArray("\x01\0\0\0N\x12\0\0\0FavoriteAlbums-1.2", 27));
}

TEST(BuiltResources, HoldEveryImageThatIsAskedFor) {
  for (const QString &name : kImages) {
    QXmlStreamReader image(built(u"images/"_s + name + u".svg"_s));
    ASSERT_TRUE(image.readNextStartElement()) << name.toStdString();
    EXPECT_EQ(image.name(), u"svg"_s);
    EXPECT_EQ(image.namespaceUri(), u"http://www.w3.org/2000/svg"_s);
    EXPECT_EQ(image.attributes().value(u"viewBox"_s), u"0 0 64 64"_s) << name.toStdString();
    while (!image.atEnd()) {
      image.readNext();
    }
    EXPECT_FALSE(image.hasError()) << name.toStdString() << ": " << image.errorString().toStdString();
  }
}

TEST(BuiltResources, ImagesAreFourPicturesWithoutForeignContent) {
  std::set<QByteArray> pictures;
  for (const QString &name : kImages) {
    const QByteArray image = built(u"images/"_s + name + u".svg"_s);
    pictures.insert(image);
    for (const char *foreign : {"href", "<script", "<image", "<text", "<!ENTITY", "<style"}) {
      EXPECT_FALSE(image.contains(foreign)) << name.toStdString() << ": " << foreign;
    }
  }
  EXPECT_EQ(pictures.size(), static_cast<std::size_t>(kImages.size()));
}
