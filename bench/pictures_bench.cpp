// Row 7: 20,000 photo paths mapped against a library of 50,000 entries, its list on the disk in the shape and size of
// a real one.
#include "bench/RealClient.h"
#include "transfer/PictureLibrary.h"

#include <algorithm>
#include <fstream>

namespace sonorel::bench {

namespace {

constexpr int kEntries = 50'000;
constexpr int kPaths = 20'000;
constexpr int kRuns = 5; // the machine's noise only adds
constexpr double kBound = 1.0;

std::string place(int number) {
  return "/2008/Roll " + std::to_string(number / 200) + "/IMG_" + std::to_string(number) + ".jpg";
}

void writeLibrary(const std::filesystem::path &home) {
  const auto folder = home / "Pictures" / "iPhoto Library";
  std::filesystem::create_directories(folder);
  std::ofstream list(folder / "AlbumData.xml");
  list << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
          "<key>Application Version</key>\n<string>7.1.3 (364)</string>\n<key>Master Image List</key>\n<dict>\n";
  for (int i = 0; i < kEntries; ++i) {
    const std::string number = std::to_string(i);
    list << "<key>" << number << "</key>\n<dict>\n<key>MediaType</key>\n<string>Image</string>\n"
         << "<key>Caption</key>\n<string>IMG_" << number << "</string>\n<key>Comment</key>\n<string> </string>\n"
         << "<key>GUID</key>\n<string>4A5B6C7D-0000-4000-8000-" << number << "</string>\n"
         << "<key>Aspect Ratio</key>\n<real>1.333333</real>\n<key>Rating</key>\n<integer>0</integer>\n"
         << "<key>Roll</key>\n<integer>" << i / 200 << "</integer>\n"
         << "<key>DateAsTimerInterval</key>\n<real>226402" << number << ".000000</real>\n"
         << "<key>ModDateAsTimerInterval</key>\n<real>226402" << number << ".500000</real>\n"
         << "<key>ImagePath</key>\n<string>/home/anna/Pictures/iPhoto Library/Pictures" << place(i) << "</string>\n"
         << "<key>ThumbPath</key>\n<string>/home/anna/Pictures/iPhoto Library/Data" << place(i)
         << "</string>\n</dict>\n";
  }
  list << "</dict>\n</dict>\n</plist>\n";
}

} // namespace

bool mappingOf20000Pictures() {
  const Folder folder;
  writeLibrary(folder.path() / "home");
  QStringList paths;
  for (int i = 0; i < kPaths; ++i) {
    const char *kind = i % 2 == 0 ? "Modified" : "Data";
    paths.append(QString::fromStdString("/home/anna/Pictures/iPhoto Library/" + std::string(kind) +
                                        place(i * 5 % (kEntries + 500))));
  }
  LinuxFileSystem files(rootsBelow(folder.path()));
  LibplistPropertyLists lists;
  test::FakeDesktop desktop;
  QStringList mapped;
  const QString home = QString::fromStdString((folder.path() / "home").string());
  const auto map = [&] { mapped = changePhotosPaths(paths, home, files, lists, desktop); };
  double seconds = secondsOf(map);
  for (int run = 1; run < kRuns; ++run) {
    seconds = std::min(seconds, secondsOf(map));
  }
  const QString first = QStringLiteral("/home/anna/Pictures/iPhoto Library/Pictures/2008/Roll 0/IMG_0.jpg");
  if (!desktop.lines.isEmpty() || mapped.size() != kPaths || mapped.constFirst() != first) {
    throw Failure(QStringLiteral("the library was not used"));
  }
  return report(7, "20,000 pictures mapped against a library of 50,000", seconds, kBound, "s");
}

} // namespace sonorel::bench
