#include "trackchute/ConnectedProduct.h"

#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeFileSystem.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

class ConnectedProductTest : public testing::Test {
protected:
  void write(const QByteArray &value) {
    files.put(path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                    "<key>DeviceConnected</key><string>" +
                        value + "</string></dict></plist>");
  }
  // What the agent takes for the product when the door tells that one.
  QString product(const QString &told) {
    return connectedProduct(files, lists, path, [this, told] {
      ++asked;
      return told;
    });
  }

  test::FakeFileSystem files;
  LibplistPropertyLists lists;
  const QString path = u"/App Data/DropperPropertyListFile"_s;
  int asked = 0;
};

} // namespace

TEST_F(ConnectedProductTest, TheFileIsBelievedAndTheDoorNotAsked) {
  write("Vaultbox 1");
  EXPECT_EQ(product(u"Auracore 5"_s), u"Vaultbox 1"_s);
  EXPECT_EQ(asked, 0);
}

TEST_F(ConnectedProductTest, TheDoorIsAskedWhenTheFileTellsNoProduct) {
  for (const char *value : {"0", "", "Toaster"}) {
    write(value);
    EXPECT_EQ(product(u"Auracore 5"_s), u"Auracore 5"_s) << value;
  }
  files.put(path, "no list");
  EXPECT_EQ(product(u"Auracore 5"_s), u"Auracore 5"_s);
  files.erase(path);
  EXPECT_EQ(product(u"Auracore 5"_s), u"Auracore 5"_s);
  EXPECT_EQ(asked, 5);
}

TEST_F(ConnectedProductTest, WithoutAnAnswerNoneIsKnown) {
  write("0");
  EXPECT_EQ(product(u"0"_s), QString());
  EXPECT_EQ(product(QString()), QString());
}

} // namespace sonorel::trackchute
