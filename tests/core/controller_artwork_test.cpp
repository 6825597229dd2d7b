// The artwork of a track, with the whole client around it.
#include "ControllerFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

class ControllerArtworkTest : public ControllerTest {
protected:
  QStringList scripts() {
    QStringList found;
    for (const ToolRequest &request : fakes.processes.requests) {
      if (request.program == u"/usr/bin/osascript"_s) {
        found.append(request.arguments.join(u'|'));
      }
    }
    return found;
  }
  // What the controller's thread does while the worker waits.
  void whileWaiting(const std::function<void()> &action) {
    fakes.clock.onSleep = [this, action] {
      fakes.loop.runPosted();
      action();
      fakes.loop.runPosted();
    };
  }
};

} // namespace

TEST_F(ControllerArtworkTest, IsPlacedBesideEveryTrack) {
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  carry();
  EXPECT_EQ(scripts(),
            QStringList{u"/Applications/Sonorel/App Data/SaveToFolder_jpegonly.scpt|/Users/anna/Music/One.mp3|One|"
                        "The Band-The Album-One|anna:Music:"_s});
  EXPECT_EQ(fakes.files.bytes(u"/Library/Application Support/Sonorel/ArtworkData.txt"_s),
            QByteArray("One\nThe Band-The Album-One\n/Users/anna/Music/One.mp3"));
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
}

TEST_F(ControllerArtworkTest, WithoutThePlayerTheUsersNoHoldsForTheWholeDrop) {
  fakes.runningApplications.applications.clear();
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s), song(u"Two"_s)});
  int asked = 0;
  whileWaiting([&] {
    if (fakes.userInterface.questions.size() > asked) {
      ++asked;
      controller->answerAlert(fakes.userInterface.questions.last().serial, 1);
    }
  });
  carry();
  EXPECT_EQ(asked, 1);
  EXPECT_TRUE(scripts().isEmpty());
  EXPECT_EQ(fakes.userInterface.last().messageLog, u"The transfer has ended."_s);
}

TEST_F(ControllerArtworkTest, ACancelDoesNotWaitForTheAnswer) {
  fakes.runningApplications.applications.clear();
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s), song(u"Two"_s)});
  whileWaiting([&] { controller->cancel(); });
  carry();
  EXPECT_TRUE(scripts().isEmpty());
  EXPECT_TRUE(fakes.userInterface.last().messageLog.endsWith(u"The transfer was cancelled."_s));
  EXPECT_EQ(finished, 1U);
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty()) << "of a transfer that is over";
  EXPECT_EQ(fakes.userInterface.closed, QList<quint32>{1});
}

TEST_F(ControllerArtworkTest, ASleepTakesTheQuestionAway) {
  fakes.runningApplications.applications.clear();
  startConnected();
  deliver(u"@~Evening@~"_s, {song(u"One"_s)});
  whileWaiting([&] {
    if (!fakes.userInterface.questions.isEmpty()) {
      fakes.power.send(PowerMessage::SystemWillSleep);
    }
  });
  carry();
  fakes.power.wake();
  fakes.loop.runPosted();
  EXPECT_TRUE(fakes.userInterface.questions.isEmpty());
  EXPECT_FALSE(fakes.userInterface.last().transferring);
}
