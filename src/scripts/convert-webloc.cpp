// ConvertWeblocToURL.sh FILE: writes the address of a browser's bookmark file into a ".url" file beside it. Status 0;
// 1 with the reason when it holds none or the file cannot be written; 2 for wrong arguments.

#include "platform/Failure.h"
#include "scripts/Webloc.h"

#include <cstdio>

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FILE\n", argv[0]);
    return 2;
  }
  try {
    sonorel::convertBookmarkFile(QString::fromUtf8(argv[1]));
    return 0;
  } catch (const std::exception &failure) {
    std::fprintf(stderr, "%s\n", sonorel::reasonOf(failure).toUtf8().constData());
    return 1;
  }
}
