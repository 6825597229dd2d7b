// Row 6: a drop of 20,000 paths until it is queued.
#include "bench/RealClient.h"

#include <fstream>

namespace sonorel::bench {

namespace {

constexpr int kPaths = 20'000;
constexpr double kBound = 0.25;

} // namespace

bool dropOf20000Paths() {
  const Folder folder;
  std::filesystem::create_directories(folder.path() / "music");
  QStringList paths;
  for (int i = 0; i < kPaths; ++i) {
    const auto file = folder.path() / "music" / ("Track number " + std::to_string(i) + " of a long album.mp3");
    std::ofstream(file) << 'x';
    paths.append(QString::fromStdString(file.string()));
  }
  RealClient client(folder.path());
  const double seconds = secondsOf([&] { client.deliver(QStringLiteral("@~Bench@~"), paths); });
  if (client.board.count() != kPaths) {
    throw Failure(QStringLiteral("not every path was queued"));
  }
  return report(6, "drop of 20,000 paths until it is queued", seconds, kBound, "s");
}

} // namespace sonorel::bench
