// The client for tests, sweeps and measurements: its folders and a scale for the fixed pauses as arguments. Never
// installed.
#include "app/ClientProgram.h"

#include <QCommandLineParser>
#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace {

struct FolderOption {
  const char *name;
  const char *description;
  QString *folder;
};

} // namespace

int main(int argc, char **argv) {
  const QCoreApplication application(argc, argv);
  sonorel::CompositionOptions options = sonorel::optionsFromEnvironment();
  const FolderOption folders[] = {
      {"data", "the client's data folder", &options.roots.data},
      {"runtime", "the folder below which volumes are mounted", &options.roots.runtime},
      {"home", "the user's home folder as the system's own paths begin with it", &options.roots.home},
      {"resources", "the shipped resources", &options.roots.resources},
      {"scripts", "the shipped scripts", &options.roots.scripts},
      {"embedded", "the tree of the embedded product's share", &options.roots.embedded},
      {"config", "the folder that holds the autostart entries", &options.configHome},
  };
  QCommandLineParser parser;
  parser.addHelpOption();
  for (const FolderOption &folder : folders) {
    parser.addOption({QString::fromLatin1(folder.name), QString::fromLatin1(folder.description), u"folder"_s});
  }
  parser.addOption({u"embedded-product"_s, u"what a new embedded product calls itself"_s, u"name"_s});
  parser.addOption({u"pause-scale"_s, u"multiplies every fixed pause; 0 takes them out"_s, u"factor"_s, u"1"_s});
  parser.process(application);

  for (const FolderOption &folder : folders) {
    if (const QString given = parser.value(QString::fromLatin1(folder.name)); !given.isEmpty()) {
      *folder.folder = given;
    }
  }
  if (parser.isSet(u"data"_s) && !parser.isSet(u"embedded"_s)) {
    options.roots.embedded = options.roots.data + u"/Embedded/VB-SHARE$"_s;
  }
  if (parser.isSet(u"embedded-product"_s)) {
    options.embeddedProduct = parser.value(u"embedded-product"_s);
  }
  bool isNumber = false;
  options.pauseScale = parser.value(u"pause-scale"_s).toDouble(&isNumber);
  if (!isNumber || options.pauseScale < 0) {
    qCritical("--pause-scale needs a number from 0");
    return sonorel::kUsage;
  }
  return sonorel::runClient(options);
}
