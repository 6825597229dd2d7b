// The client for tests, sweeps and measurements: its folders, a scale for the fixed pauses and the moment of its
// death as arguments. Never installed.
#include "app/ClientProgram.h"
#include "support/DyingFileSystem.h"

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
  parser.addOption({u"count-from"_s, u"counts operations on files from the first one below it"_s, u"folder"_s});
  parser.addOption({u"die-at"_s, u"kills the client at that operation"_s, u"number"_s, u"0"_s});
  parser.addOption({u"die-after"_s, u"as long after its beginning; 0 kills before it"_s, u"microseconds"_s, u"0"_s});
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
  if (parser.isSet(u"count-from"_s)) {
    const sonorel::test::Death death{parser.value(u"count-from"_s), parser.value(u"die-at"_s).toInt(),
                                     std::chrono::microseconds(parser.value(u"die-after"_s).toInt())};
    options.filesInFront = [death](sonorel::FileSystem &files) {
      return std::make_unique<sonorel::test::DyingFileSystem>(files, death);
    };
  }
  return sonorel::runClient(options);
}
