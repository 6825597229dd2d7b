// sonorel-favourites [--json] FILE: prints a favourites file. Opens it for reading only. Status 0; 1 when the file
// cannot be read or holds no lists that can be read; 2 for wrong arguments.

#include "favourites/FavouritesReport.h"

#include <QFile>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 kLargestFile = 256LL * 1024 * 1024;

int wrongUse(const char *program) {
  std::fprintf(stderr, "usage: %s [--json] FILE\n", program);
  return 2;
}

// Control characters of a foreign file stay away from the terminal.
QByteArray printable(const QString &text) {
  QString clean = text;
  for (QChar &character : clean) {
    if (character.category() == QChar::Other_Control && character != u'\n') {
      character = QChar::ReplacementCharacter;
    }
  }
  return clean.toUtf8();
}

} // namespace

int main(int argc, char **argv) {
  bool json = false;
  const char *name = nullptr;
  bool options = true;
  for (int i = 1; i < argc; ++i) {
    const QByteArrayView argument(argv[i]);
    if (options && argument == "--json") {
      json = true;
    } else if (options && argument == "--") {
      options = false;
    } else if (name != nullptr || (options && argument.startsWith("--"))) {
      return wrongUse(argv[0]);
    } else {
      name = argv[i];
    }
  }
  if (name == nullptr) {
    return wrongUse(argv[0]);
  }
  QFile file(QString::fromLocal8Bit(name));
  const bool open = file.open(QIODevice::ReadOnly);
  const QByteArray bytes = open ? file.read(kLargestFile + 1) : QByteArray();
  if (!open || bytes.size() > kLargestFile) {
    const QString reason = open ? u"the file is larger than any favourites file"_s : file.errorString();
    std::fprintf(stderr, "%s: %s: %s\n", argv[0], name, reason.toLocal8Bit().constData());
    return 1;
  }
  const sonorel::FavouritesReport report = sonorel::favouritesReport(bytes);
  const QByteArray output = json ? jsonOf(report) : printable(textOf(report));
  if (std::fwrite(output.constData(), 1, static_cast<std::size_t>(output.size()), stdout) !=
          static_cast<std::size_t>(output.size()) ||
      std::fflush(stdout) != 0) {
    return 1;
  }
  return report.file.list1Readable ? 0 : 1;
}
