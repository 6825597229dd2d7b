#include "trackchute/ConnectedProduct.h"

#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeFileSystem.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <QVariantMap>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::trackchute;

namespace {

const auto kFile = u"/Applications/Sonorel/App Data/DropperPropertyListFile"_s;

class ConnectedProductTest : public testing::Test {
protected:
  void putConnected(const QVariant &value) {
    files.put(kFile, lists.encodeXml(QVariantMap{{u"DeviceConnected"_s, value}, {u"Another"_s, u"Auralis 5"_s}}));
  }
  QString product() {
    return connectedProduct(files, lists, kFile, [this] {
      ++questions;
      return door;
    });
  }

  test::FakeFileSystem files;
  LibplistPropertyLists lists;
  QString door = u"Auracore 5"_s;
  int questions = 0; // to the door
};

} // namespace

TEST_F(ConnectedProductTest, FileTellsWithoutTheDoor) {
  for (const QString &name : {u"Auralis 5"_s, u"Auracore 5"_s, u"Vaultbox 1"_s}) {
    putConnected(name);
    EXPECT_EQ(product(), name);
  }
  EXPECT_EQ(questions, 0);
}

TEST_F(ConnectedProductTest, DoorIsAskedWhereTheFileNamesNoProduct) {
  for (const QVariant &value : {QVariant(u"0"_s), QVariant(u""_s), QVariant(5), QVariant(u"Something else"_s)}) {
    putConnected(value);
    EXPECT_EQ(product(), u"Auracore 5"_s) << value.toString().toStdString();
  }
  EXPECT_EQ(questions, 4);
}

TEST_F(ConnectedProductTest, DoorIsAskedWithoutAFileThatCanBeRead) {
  EXPECT_EQ(product(), u"Auracore 5"_s);
  for (const QByteArray &bytes : {QByteArray(), QByteArray("<plist><dict>"), lists.encodeXml(QVariantMap())}) {
    files.put(kFile, bytes);
    EXPECT_EQ(product(), u"Auracore 5"_s) << bytes.toStdString();
  }
  EXPECT_EQ(questions, 4);
}

TEST_F(ConnectedProductTest, IsUnknownWhenNeitherNamesAProduct) {
  putConnected(u"0"_s);
  for (const QString &said : {u""_s, u"0"_s, u"Something else"_s}) {
    door = said;
    EXPECT_EQ(product(), QString()) << said.toStdString();
  }
}
