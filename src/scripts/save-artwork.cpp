// SaveToFolder_jpegonly.scpt TRACK TITLE NAME FOLDERS: saves the picture of a track as NAME.jpg in a folder of the
// music folder on the share, which SONOREL_MUSIC_FOLDER names. FOLDERS is empty or like "Artist:Album:"; TITLE is for
// systems that find the picture by it. SONOREL_TEMPORARY_NAME is the client's own name for a file that is not whole
// yet: one that was left under it goes. Started once for each track, so that it uses the standard library and TagLib
// only. Status 0 when the picture stands there; 1 when the track has none; 2 for wrong arguments; 3 when it cannot be
// written.
#include "scripts/PictureFile.h"
#include "scripts/TrackPicture.h"

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace {

constexpr int kNoPicture = 1;
constexpr int kWrongUse = 2;
constexpr int kNotWritten = 3;

// A broken file may announce a picture of any size. The sanitizers need more address space than there is.
void limitMemory() {
#ifndef __SANITIZE_ADDRESS__
  const rlimit limit{1UL << 30U, 1UL << 30U};
  ::setrlimit(RLIMIT_AS, &limit);
#endif
}

int complain(const std::exception &failure, int status) {
  std::fprintf(stderr, "%s\n", failure.what());
  return status;
}

std::string converterBeside() {
  return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "picture-to-jpeg").string();
}

} // namespace

int main(int argc, char **argv) {
  const char *musicFolder = std::getenv("SONOREL_MUSIC_FOLDER");
  if (argc != 5 || musicFolder == nullptr) {
    std::fprintf(stderr, "usage: SONOREL_MUSIC_FOLDER=FOLDER %s TRACK TITLE NAME FOLDERS\n", argv[0]);
    return kWrongUse;
  }
  limitMemory();
  sonorel::obeyRequestsToEnd();
  const char *given = std::getenv("SONOREL_TEMPORARY_NAME");
  const std::string temporaryName = given != nullptr ? given : "";
  std::string folder;
  std::string picture;
  try {
    folder = sonorel::pictureFolder(musicFolder, argv[4]);
    sonorel::removeLeftOver(folder, temporaryName);
    picture = sonorel::pictureOfTrack(argv[1], converterBeside());
  } catch (const std::invalid_argument &failure) {
    return complain(failure, kWrongUse);
  } catch (const std::exception &failure) {
    return complain(failure, kNoPicture);
  }
  try {
    sonorel::placePicture(folder, std::string(argv[3]) + ".jpg", picture, temporaryName);
    return 0;
  } catch (const std::invalid_argument &failure) {
    return complain(failure, kWrongUse);
  } catch (const std::exception &failure) {
    return complain(failure, kNotWritten);
  }
}
