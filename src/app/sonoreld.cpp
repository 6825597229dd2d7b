// The client without a window: same controller, same door. It takes no arguments.
#include "app/ClientProgram.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv) {
  const QCoreApplication application(argc, argv);
  if (argc > 1) {
    const bool isHelp = qstrcmp(argv[1], "--help") == 0 || qstrcmp(argv[1], "-h") == 0;
    std::fputs(
        "Usage: sonoreld\nThe Sonorel client without a window, driven over the session bus (com.orv.Sonorel).\n",
        isHelp ? stdout : stderr);
    return isHelp ? sonorel::kEnded : sonorel::kUsage;
  }
  return sonorel::runClient(sonorel::optionsFromEnvironment());
}
