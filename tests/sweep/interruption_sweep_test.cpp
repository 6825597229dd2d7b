// Every operation of a connection and a whole transfer is disturbed in turn, one way after the other. Whatever
// happens: no crash, no hang, nothing said to be on the share that is not, the user's files untouched, complete
// favourites at every instant, and the same drop repeated gives the undisturbed share.
#include "Scenario.h"
#include "ShareState.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::test;

namespace {

enum class Fault { Error, Unknown, Silent, Gone, NoRoom, DiskFull, ClientDies, ToolKilled, ToolsKilled };

struct Named {
  Fault fault;
  const char *name;
};

constexpr Named kFaults[] = {
    {Fault::Error, "Error"},           {Fault::Unknown, "Unknown"},         {Fault::Silent, "VolumeSilent"},
    {Fault::Gone, "ShareGone"},        {Fault::NoRoom, "WriteFindsNoRoom"}, {Fault::DiskFull, "DiskFull"},
    {Fault::ClientDies, "ClientDies"}, {Fault::ToolKilled, "ToolKilled"},   {Fault::ToolsKilled, "TwoToolsKilled"}};

class InterruptionSweep : public testing::TestWithParam<std::tuple<size_t, size_t>> {
protected:
  const Scenario &scenario = scenarios().at(std::get<0>(GetParam()));
  const Fault fault = kFaults[std::get<1>(GetParam())].fault;
  QMap<QString, QByteArray> expected;

  // One operation in so many is disturbed; 1 for the long run.
  static int stride() {
    const char *value = std::getenv("SONOREL_SWEEP_STRIDE");
    return value != nullptr ? qMax(1, std::atoi(value)) : 1;
  }
  // Counted by runs of tools instead of operations.
  [[nodiscard]] bool ofTools() const { return fault == Fault::ToolKilled || fault == Fault::ToolsKilled; }
  [[nodiscard]] QMap<QString, QByteArray> comparable(QMap<QString, QByteArray> state) const;
  // False when the transfer was over before operation k.
  bool disturb(World &world, const Dropped &dropped, int k);
  // One disturbed run and what follows it.
  bool sweepOne(int k);
  void judge(World &world, const QMap<QString, QByteArray> &local, const QByteArray &before);
  void judgePhotos(World &world, const QStringList &before);

private:
  void inject(World &world, int k);

  QString m_disturbed; // the operation that met the fault
};

QMap<QString, QByteArray> InterruptionSweep::comparable(QMap<QString, QByteArray> state) const {
  if (scenario.onColourKey) {
    QByteArray &favourites = state[u"System/NetMusicFavorites.orv"_s];
    favourites.replace(": red.mp3(1) First(2) Second(2)", ": First(2) Second(2)");
    state.remove(u"System/SonorelCFLContents.xml"_s);
    state.remove(u"System/OrvSpecialFavouriteLimits.orv"_s);
  }
  QMap<QString, QByteArray> renamed;
  for (auto file = state.begin(); file != state.end(); ++file) {
    QByteArray path = file.key().toUtf8();
    QByteArray bytes = *file;
    for (auto name = scenario.ownNames.begin(); name != scenario.ownNames.end(); ++name) {
      if (path.endsWith('/' + name.key())) {
        path.replace(name.key(), *name);
      }
      bytes.replace('\\' + name.key() + '(', '\\' + *name + '(');
    }
    EXPECT_FALSE(renamed.contains(QString::fromUtf8(path))) << path.toStdString() << " stands there twice";
    renamed.insert(QString::fromUtf8(path), bytes);
  }
  return renamed;
}

void InterruptionSweep::inject(World &world, int k) {
  switch (fault) {
  case Fault::Error:
    world.files.failAt(k, FailureKind::Other);
    break;
  case Fault::Unknown:
    world.files.failAt(k, FailureKind::Unknown);
    break;
  case Fault::NoRoom:
    world.files.failAt(k, FailureKind::DiskFull);
    break;
  case Fault::ClientDies:
    world.files.dieAt(k);
    break;
  case Fault::ToolKilled:
    world.processes.failAt(k, exited(137));
    break;
  case Fault::ToolsKilled:
    world.processes.failAt(k, exited(137), 2);
    break;
  default:
    break; // from the hook
  }
}

bool InterruptionSweep::disturb(World &world, const Dropped &dropped, int k) {
  Client client(world);
  FavouritesWatch watch(world);
  const int start = world.files.operations();
  const int runs = world.processes.runs();
  std::string broken;
  world.files.beforeOperation = [&](int operation) {
    if (operation - start == k) {
      if (fault == Fault::Silent) {
        world.files.setUnknown(kMountPoint.toString(), true);
      } else if (fault == Fault::Gone) {
        world.files.unmount(kMountPoint.toString());
      } else if (fault == Fault::DiskFull) {
        world.files.setFreeBytes(kMountPoint.toString(), 0);
      }
    }
    if (broken.empty()) {
      broken = watch.check();
      broken += broken.empty() ? "" : " (before operation " + std::to_string(operation - start) + ")";
    }
  };
  inject(world, k);
  bool over = false;
  try {
    (void)client.connect();
    client.drop(dropped);
    client.settle();
    EXPECT_TRUE(client.board.transferComplete());
    EXPECT_EQ(client.finishedDrops, 1U);
    over = ofTools() ? world.processes.runs() - runs < k : world.files.operations() - start < k;
  } catch (const Died &) {
  }
  world.files.beforeOperation = nullptr;
  const QStringList log = world.files.log();
  m_disturbed = u"after "_s + log.value(start + k - 2) + u": "_s + log.value(start + k - 1);
  broken += broken.empty() ? watch.check() : "";
  EXPECT_EQ(broken, "");
  return !over;
}

void InterruptionSweep::judge(World &world, const QMap<QString, QByteArray> &local, const QByteArray &before) {
  world.files.revive();
  world.files.clearFailures();
  world.files.setUnknown(kMountPoint.toString(), false);
  world.files.setFreeBytes(kMountPoint.toString(), FakeFileSystem::kPlenty);
  world.processes.failAt(0, {});
  EXPECT_EQ(difference(local, localState(world)), "");
  const auto covered = world.files.isMounted(kMountPoint.toString()) ? QMap<QString, QByteArray>()
                                                                     : world.files.tree(kMountPoint.toString());
  EXPECT_EQ(covered.keys().join(u' '), QString()) << "written below the point while it was not mounted";
  const bool mounted = world.files.isMounted(kMountPoint.toString());
  world.files.mount(kMountPoint.toString());
  if (!scenario.replacesFiles || favouritesText(world) != before) {
    EXPECT_EQ(titlesWithoutFile(world).join(u' '), QString());
  }
  if (!mounted) {
    world.files.unmount(kMountPoint.toString());
  }
}

// What the list of photos has been given is there. A picture of an older album may be gone when its replacement
// failed.
void InterruptionSweep::judgePhotos(World &world, const QStringList &before) {
  QStringList missing = photosWithoutFile(world);
  missing.removeIf([&before](const QString &photo) { return before.contains(photo); });
  EXPECT_EQ(missing.join(u", "_s), QString());
}

bool InterruptionSweep::sweepOne(int k) {
  World world;
  const Dropped dropped = scenario.prepare(world);
  const auto local = localState(world);
  const QByteArray before = favouritesText(world);
  const QStringList photosBefore = photoTitles(world);
  const bool reached = disturb(world, dropped, k);
  SCOPED_TRACE(m_disturbed.toStdString());
  judge(world, local, before);
  judgePhotos(world, photosBefore);
  playUndisturbed(world, dropped);
  EXPECT_EQ(photosWithoutFile(world).join(u", "_s), QString());
  EXPECT_EQ(leftArtwork(world).join(u' '), QString());
  EXPECT_EQ(difference(comparable(expected), comparable(shareState(world))), "");
  EXPECT_EQ(titlesWithoutFile(world).join(u' '), QString());
  return reached;
}

TEST_P(InterruptionSweep, SameDropRepeatedGivesTheUndisturbedShare) {
  {
    World world;
    playUndisturbed(world, scenario.prepare(world));
    expected = shareState(world);
    ASSERT_TRUE(expected.contains(u"System/NetMusicFavorites.orv"_s));
    ASSERT_TRUE(expected.contains(scenario.placed)) << difference({}, expected);
  }
  int k = 1;
  int bad = 0; // a defect often shows at many operations: some of them are enough
  for (bool reached = true; reached && bad < 6; k += stride()) {
    SCOPED_TRACE("disturbed operation " + std::to_string(k));
    const auto results = testing::UnitTest::GetInstance()->current_test_info()->result();
    const int partsBefore = results->total_part_count();
    reached = sweepOne(k);
    bad += results->total_part_count() > partsBefore ? 1 : 0;
  }
  EXPECT_GT(k, ofTools() ? scenario.tools : 90);
}

std::string nameOf(const testing::TestParamInfo<std::tuple<size_t, size_t>> &info) {
  return scenarios().at(std::get<0>(info.param)).name + kFaults[std::get<1>(info.param)].name;
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, InterruptionSweep,
                         testing::Combine(testing::Range<size_t>(0, scenarios().size()),
                                          testing::Range<size_t>(0, std::size(kFaults))),
                         nameOf);

} // namespace
