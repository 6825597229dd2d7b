// A seeded scheduler plays drops, cancels, sleeps, lost and silent shares, full disks, killed tools and deaths of the
// client against each other. A failing seed is printed; SONOREL_SEED=n plays it again, SONOREL_ROUNDS=n plays more.
#include "Scenario.h"
#include "ShareState.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

std::optional<unsigned> numberFrom(const char *variable) {
  const char *value = std::getenv(variable);
  return value != nullptr ? std::optional(static_cast<unsigned>(std::strtoul(value, nullptr, 10))) : std::nullopt;
}

std::vector<Dropped> drops(World &world) {
  const QStringList tracks{
      world.track(u"Ann/First/Ann-First-One.mp3"_s), world.track(u"Ann/First/Ann-First-Two.mp3"_s, 'b'),
      world.track(u"Ben/Second/Ben-Second-Three.m4a"_s, 'c'), world.track(u"Cem/Third/Cem-Third-Four.mp3"_s, 'd'),
      world.track(u"Cem/Third/Cem-Third-Five.flac"_s, 'e')};
  const QString picture = world.picture(u"Trip/1.jpg"_s);
  const Dropped albums{
      {}, {}, {{u"Summer"_s, {picture, world.picture(u"Trip/2: sea.jpg"_s, 'b')}}, {u"Best"_s, {picture}}}};
  const Dropped bookmarks{
      {}, {}, {}, {u"News: today"_s, u"Mail"_s}, {u"http://example.org/1"_s, u"http://example.org/2"_s}};
  world.artwork(tracks.at(0), "a picture of the first two");
  world.artwork(tracks.at(1), "a picture of the first two");
  world.artwork(tracks.at(4), "a picture of the fifth");
  return {{u"@~Mix@~"_s, tracks.mid(0, 3) + QStringList{picture, u"@~RadioOne"_s}},
          {u"@~Slow@~"_s, tracks.mid(2, 3)},
          {u"@~All@~"_s, tracks},
          albums,
          bookmarks,
          {u"Finder"_s,
           {world.bookmark(u"Page.webloc"_s), world.bookmark(u"Other.url"_s), world.picture(u"Trip/film.avi"_s)}}};
}

// One client's life under a scheduler that acts wherever the client waits: in pauses and while a tool runs, and, for
// what happens to disk and share, before any operation.
class Scheduler {
public:
  Scheduler(World &world, std::mt19937 &random, const std::vector<Dropped> &drops)
      : m_world(world), m_random(random), m_drops(drops), m_watch(world) {}

  void live();
  [[nodiscard]] const std::string &broken() const { return m_broken; }
  [[nodiscard]] const QStringList &history() const { return m_history; }

private:
  [[nodiscard]] int upTo(int limit) { return std::uniform_int_distribution<int>(0, limit)(m_random); }
  [[nodiscard]] const Dropped &anyDrop() {
    return m_drops[static_cast<size_t>(upTo(static_cast<int>(m_drops.size()) - 1))];
  }
  void beforeOperation();
  void whileWaiting();
  void disturbShare();
  void mendShare();
  void note(const QString &line) { m_history.append(QString::number(m_world.files.operations()) + u' ' + line); }

  World &m_world;
  std::mt19937 &m_random;
  const std::vector<Dropped> &m_drops;
  FavouritesWatch m_watch;
  Client *m_client = nullptr;
  bool m_acting = false;
  std::string m_broken;
  QStringList m_history;
};

void Scheduler::beforeOperation() {
  if (m_acting) {
    return;
  }
  m_acting = true;
  if (m_broken.empty()) {
    m_broken = m_watch.check();
  }
  if (upTo(300) == 0) {
    disturbShare();
  }
  m_acting = false;
}

void Scheduler::disturbShare() {
  const QString point = kMountPoint.toString();
  switch (upTo(5)) {
  case 0:
    note(u"share gone"_s);
    m_world.files.unmount(point);
    break;
  case 1:
    note(u"volume silent"_s);
    m_world.files.setUnknown(point, true);
    break;
  case 2:
    note(u"disk full"_s);
    m_world.files.setFreeBytes(point, 0);
    break;
  case 3:
    note(u"tool killed"_s);
    m_world.processes.failAt(1, exited(137));
    break;
  case 4:
    note(u"one operation fails"_s);
    m_world.files.failAt(1 + upTo(5), FailureKind::Other);
    break;
  default:
    note(u"client dies"_s);
    m_world.files.dieAt(1 + upTo(20));
  }
}

void Scheduler::mendShare() {
  const QString point = kMountPoint.toString();
  m_world.files.setUnknown(point, false);
  m_world.files.setFreeBytes(point, FakeFileSystem::kPlenty);
}

// The controller's thread runs beside the worker; while it is itself in a pause, what is asked waits in its queue.
void Scheduler::whileWaiting() {
  if (m_client == nullptr || m_acting || !m_client->insideWorker()) {
    return;
  }
  m_acting = true;
  const int action = upTo(9);
  if (action == 0) {
    note(u"cancel"_s);
    m_client->cancel();
  } else if (action == 1) {
    note(u"drop while running"_s);
    m_client->drop(anyDrop());
  } else if (action == 2) {
    note(u"share mended"_s);
    mendShare();
  } else if (action == 3) {
    note(u"sleep"_s);
    m_client->sleep();
  }
  m_acting = false;
  m_client->loop.runPosted();
}

void Scheduler::live() {
  m_world.files.beforeOperation = [this](int) { beforeOperation(); };
  const auto slept = m_world.clock.onSleep;
  m_world.clock.onSleep = [this, slept] {
    slept();
    whileWaiting();
  };
  m_world.processes.onRun = [this](const ToolRequest &) {
    whileWaiting();
    return std::nullopt;
  };
  try {
    Client client(m_world);
    m_client = &client;
    (void)client.connect();
    for (int i = upTo(3); i >= 0; --i) {
      note(u"drop"_s);
      client.drop(anyDrop());
      client.settle();
      if (client.board.manualSleepWasConnected) {
        note(u"wake"_s);
        client.wake();
      }
      mendShare();
      client.settle();
      (void)client.connect();
    }
  } catch (const Died &) {
    note(u"died"_s);
  }
  m_client = nullptr;
  m_world.files.beforeOperation = nullptr;
  m_world.processes.onRun = nullptr;
  m_world.clock.onSleep = slept;
  m_world.files.revive();
  m_world.files.clearFailures();
  m_world.processes.failAt(0, {});
  mendShare();
}

// What happened, for the check that the scheduler does what it is for.
void playRound(unsigned seed, const QMap<QString, QByteArray> &expected, QStringList &events) {
  std::mt19937 random(seed);
  World world;
  const std::vector<Dropped> all = drops(world);
  const auto local = localState(world);
  QStringList history;
  for (int life = 0; life < 4; ++life) {
    Scheduler scheduler(world, random, all);
    scheduler.live();
    history += scheduler.history();
    ASSERT_EQ(scheduler.broken(), "") << history.join(u'\n').toStdString();
  }
  for (const QString &line : history) {
    events.append(line.section(u' ', 1));
  }
  for (const Dropped &dropped : all) {
    playUndisturbed(world, dropped);
  }
  EXPECT_EQ(difference(expected, shareState(world)), "") << history.join(u'\n').toStdString();
  EXPECT_EQ(titlesWithoutFile(world).join(u' '), QString());
  EXPECT_EQ(photosWithoutFile(world).join(u", "_s), QString());
  EXPECT_EQ(leftArtwork(world).join(u' '), QString());
  EXPECT_EQ(difference(local, localState(world)), "");
}

} // namespace

TEST(RandomTransfer, EndsInTheUndisturbedShareWhateverHappened) {
  QMap<QString, QByteArray> expected;
  {
    World world;
    for (const Dropped &dropped : drops(world)) {
      playUndisturbed(world, dropped);
    }
    expected = shareState(world);
  }
  const auto replayed = numberFrom("SONOREL_SEED");
  const unsigned first = replayed.value_or(1);
  const unsigned usual = std::getenv("SONOREL_LONG") != nullptr ? 500 : 60;
  const unsigned rounds = replayed ? 1 : numberFrom("SONOREL_ROUNDS").value_or(usual);
  QStringList events;
  for (unsigned seed = first; seed < first + rounds && !HasFailure(); ++seed) {
    SCOPED_TRACE("SONOREL_SEED=" + std::to_string(seed));
    playRound(seed, expected, events);
  }
  for (const QString &event :
       {u"cancel"_s, u"drop while running"_s, u"sleep"_s, u"wake"_s, u"share gone"_s, u"volume silent"_s,
        u"disk full"_s, u"share mended"_s, u"tool killed"_s, u"one operation fails"_s, u"died"_s}) {
    EXPECT_TRUE(replayed || events.contains(event)) << event.toStdString() << " never happened";
  }
}
