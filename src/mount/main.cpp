#include "mount/MountProgram.h"

#include <cstdio>
#include <string_view>
#include <unistd.h>

// One program, two names.
int main(int argc, char **argv) {
  const std::string_view name = argc > 0 ? argv[0] : "";
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const int status = name.ends_with("sonorel-umount") ? sonorel::runUnmount(arguments) : sonorel::runMount(arguments);
  std::fflush(nullptr);
  // What the libraries would still do at the end is of no use to a process that has none of their work.
  ::_exit(status);
}
