#include "link/ClientMessages.h"

#include "platform/linux/LibplistPropertyLists.h"
#include "support/FakeDesktop.h"
#include "support/FakeView.h"
#include "support/Fixtures.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

const auto kSystem = u"/Volumes/VB-SHARE$/System/"_s;
const QByteArray kRecordStart("\x03\0\0\0\x26\0\0\0{0F8FAD5B-D9CB-469F-A165-70867728950E}", 46);

class ClientMessagesTest : public testing::Test {
protected:
  ClientMessagesTest() {
    mountShare(files);
    installStrings(files);
    strings.setLanguageFile(u"StringsEnglish"_s);
    session.setUUID(u"{0F8FAD5B-D9CB-469F-A165-70867728950E}"_s);
  }

  // The names of the message files on the share.
  QStringList written() {
    QStringList names = files.tree(kSystem.chopped(1)).keys();
    names.removeAll(u"OrvProductName.orv"_s);
    return names;
  }

  FakeFileSystem files;
  LibplistPropertyLists lists;
  FakeDesktop desktop;
  FakeView view;
  Session session;
  Strings strings{files, lists, resourceFolder()};
  ClientMessages messages{files, desktop, strings, view, session, standardFolders()};
};

} // namespace

TEST_F(ClientMessagesTest, WritesTheAliveMessageIntoTheSystemFolder) {
  messages.sendClientAliveMessage();
  EXPECT_EQ(files.bytes(kSystem + u"ClientAlive.orv"_s), kRecordStart + QByteArray("\x0B\0\0\0ClientAlive\x01\0\0\0"
                                                                                   "1",
                                                                                   20));
  EXPECT_EQ(view.calls, QStringList());
}

TEST_F(ClientMessagesTest, ReplacesAnOlderMessageByRenaming) {
  files.put(kSystem + u"ClientConnected.orv"_s, "old");
  files.clearLog();
  messages.send(kClientConnected);
  EXPECT_EQ(files.bytes(kSystem + u"ClientConnected.orv"_s),
            kRecordStart + QByteArray("\x0F\0\0\0ClientConnected\x01\0\0\0"
                                      "1",
                                      24));
  EXPECT_EQ(files.log(), QStringList({u"writeAtomically /Volumes/VB-SHARE$/System/ClientConnected.orv"_s,
                                      u"replace /Volumes/VB-SHARE$/System/ClientConnected.orv"_s}));
}

TEST_F(ClientMessagesTest, SaysNothingWhenTheShareHasGone) {
  files.unmount(u"/Volumes/VB-SHARE$"_s);
  messages.sendClientAliveMessage();
  EXPECT_EQ(desktop.lines, QStringList());
  EXPECT_EQ(view.calls, QStringList());
  EXPECT_FALSE(files.exists(kSystem + u"ClientAlive.orv"_s));
}

TEST_F(ClientMessagesTest, ShowsAnUnexpectedFailureOfTheAliveMessage) {
  files.beforeOperation = [](int) { throw std::runtime_error("broken"); };
  messages.sendClientAliveMessage();
  EXPECT_EQ(desktop.lines, QStringList({u"Exception in ---> <AppController><sendClientAliveMessage> broken"_s}));
  EXPECT_EQ(view.calls, QStringList({u"alert Sonorel|ErrorUnknown"_s}));
}

TEST_F(ClientMessagesTest, LogsAnUnexpectedFailureOfTheCollectionMessages) {
  files.beforeOperation = [](int) { throw std::runtime_error("broken"); };
  messages.sendMetaDataForTransferredFiles({true, true, true});
  EXPECT_EQ(desktop.lines,
            QStringList({u"Exception in ---> <AppController><sendMetaDataForTransferredFiles> broken"_s}));
  EXPECT_EQ(view.calls, QStringList());
}

TEST_F(ClientMessagesTest, NamesTheCollectionsThatGotFiles) {
  struct Case {
    TransferredKinds kinds;
    QStringList names;
  };
  const auto music = u"NetMusicFileCollection.orv"_s;
  const auto photo = u"PhotoFileCollection.orv"_s;
  const QList<Case> cases{{{false, false, false}, {}},
                          {{true, false, false}, {music}},
                          {{false, true, false}, {photo}},
                          {{false, false, true}, {photo}},
                          {{true, true, true}, {music, photo}}};
  for (const Case &one : cases) {
    messages.sendMetaDataForTransferredFiles(one.kinds);
    EXPECT_EQ(written(), one.names);
    files.erase(kSystem + music);
    files.erase(kSystem + photo);
  }
}

TEST_F(ClientMessagesTest, WritesAnyRecordUnderAnyName) {
  messages.generateMetaDataFile(u"Other.orv"_s, u"{0F8FAD5B-D9CB-469F-A165-70867728950E}"_s, u"Command"_s, u"1"_s);
  EXPECT_EQ(files.bytes(kSystem + u"Other.orv"_s), kRecordStart + QByteArray("\x07\0\0\0Command\x01\0\0\0"
                                                                             "1",
                                                                             16));
}
