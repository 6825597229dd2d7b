#include "trackchute/DroppedFiles.h"

#include "core/state/FileTypes.h"
#include "core/state/PathNames.h"
#include "platform/Failure.h"

#include <QStringDecoder>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace sonorel::trackchute {

namespace {

constexpr QLatin1String kCompanion("._");
constexpr QStringView kProgramsMarks = u"@~#"; // behind the dot: thumbnails, locks and saves of programs

std::optional<QString> decoded(const std::string &bytes) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
  const QString text = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
  if (decoder.hasError()) {
    return std::nullopt;
  }
  return text;
}

QString shown(const std::string &bytes) {
  return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

// Behind a link ".." is not the folder that the text says: then the file system is asked.
fs::path cleaned(const std::string &argument, std::error_code &error) {
  const fs::path given = fs::absolute(argument, error);
  const fs::path clean = given.lexically_normal();
  std::error_code ignored;
  if (error || !fs::exists(given, ignored) || fs::equivalent(given, clean, ignored)) {
    return clean;
  }
  return fs::canonical(given, error);
}

bool isHiddenName(const QString &name) {
  if (name.size() < 2 || name[0] != u'.') {
    return false;
  }
  const bool hasBlank = std::any_of(name.begin(), name.end(), [](QChar one) { return one.isSpace(); });
  const bool isProgramsOwn = (name[1].isLetter() && !hasBlank) || kProgramsMarks.contains(name[1]);
  return isProgramsOwn || name.startsWith(kCompanion);
}

bool isCarried(const QString &name) {
  return fileTypeOf(pathExtension(name)) != FileType::Invalid;
}

class Expansion {
public:
  explicit Expansion(const FromOutside &fromOutside) : m_fromOutside(fromOutside) {}

  DroppedFiles result;

  void addArgument(const std::string &argument) {
    std::error_code error;
    const fs::path path = cleaned(argument, error);
    struct stat status {};
    if (argument.empty() || error || ::stat(path.c_str(), &status) != 0) {
      throw Failure(u"there is no file \"%1\""_s.replace(u"%1"_s, shown(argument)), FailureKind::Absent);
    }
    if (!decoded(path.native())) {
      throw Failure(u"the name of \"%1\" is not UTF-8 and cannot be sent"_s.replace(u"%1"_s, shown(argument)));
    }
    if (S_ISDIR(status.st_mode)) {
      addFolder(path, status);
    } else if (S_ISREG(status.st_mode)) {
      addFile(*decoded(path.native()));
    } else {
      throw Failure(u"\"%1\" is neither a file nor a folder"_s.replace(u"%1"_s, shown(argument)));
    }
  }

private:
  const FromOutside &m_fromOutside;
  std::set<std::pair<dev_t, ino_t>> m_folders; // read already

  void addFile(const QString &path) {
    QString reason;
    if (!m_fromOutside(path, &reason)) {
      result.leftOut.append(reason);
      return;
    }
    result.holdsPictures = result.holdsPictures || fileTypeOf(pathExtension(path)) == FileType::PhotoOrVideo;
    result.paths.append(path);
  }

  void addFolder(const fs::path &folder, const struct stat &status) {
    if (!m_folders.emplace(status.st_dev, status.st_ino).second) {
      return;
    }
    std::error_code error;
    std::vector<std::pair<QString, fs::path>> entries;
    fs::directory_iterator listing(folder, error);
    if (error) {
      throw Failure(u"the folder \"%1\" cannot be read"_s.replace(u"%1"_s, shown(folder.native())));
    }
    for (; listing != fs::directory_iterator(); listing.increment(error)) {
      const std::string bytes = listing->path().filename().native();
      const auto text = decoded(bytes);
      const QString name = text ? *text : shown(bytes);
      if (text || isHiddenName(name)) {
        entries.emplace_back(name, listing->path());
      } else {
        result.leftOut.append(shown(listing->path().native()));
      }
    }
    if (error) {
      throw Failure(u"the folder \"%1\" cannot be read to its end"_s.replace(u"%1"_s, shown(folder.native())));
    }
    std::sort(entries.begin(), entries.end(),
              [](const auto &a, const auto &b) { return comesBefore(a.first, b.first); });
    for (const auto &[name, path] : entries) {
      addEntry(name, path);
    }
  }

  void addEntry(const QString &name, const fs::path &path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
      status = {};
    }
    if (isHiddenName(name)) {
      leaveOutHidden(name, path, status);
    } else if (S_ISDIR(status.st_mode)) {
      addFolder(path, status);
    } else if (S_ISREG(status.st_mode)) {
      if (!name.startsWith(u'.') || isCarried(name)) {
        addFile(shown(path.native()));
      }
    } else {
      result.leftOut.append(shown(path.native()));
    }
  }

  // Told where somebody may look for what is in it. What another system keeps beside a song is no song.
  void leaveOutHidden(const QString &name, const fs::path &path, const struct stat &status) {
    const bool isMissed = S_ISREG(status.st_mode) && !name.startsWith(kCompanion) && isCarried(name);
    if (isMissed || S_ISDIR(status.st_mode)) {
      result.leftOut.append(shown(path.native()) + u" (hidden)"_s);
    }
  }
};

qsizetype digitsFrom(const QString &text, qsizetype position) {
  qsizetype end = position;
  while (end < text.size() && text[end] >= u'0' && text[end] <= u'9') {
    ++end;
  }
  return end;
}

QStringView withoutLeadingZeros(QStringView digits) {
  while (digits.size() > 1 && digits.front() == u'0') {
    digits = digits.sliced(1);
  }
  return digits;
}

} // namespace

bool comesBefore(const QString &a, const QString &b) {
  qsizetype i = 0;
  qsizetype j = 0;
  while (i < a.size() && j < b.size()) {
    const qsizetype endA = digitsFrom(a, i);
    const qsizetype endB = digitsFrom(b, j);
    if (endA > i && endB > j) {
      const QStringView runA = withoutLeadingZeros(QStringView(a).sliced(i, endA - i));
      const QStringView runB = withoutLeadingZeros(QStringView(b).sliced(j, endB - j));
      if (runA.size() != runB.size()) {
        return runA.size() < runB.size();
      }
      if (const int order = runA.compare(runB); order != 0) {
        return order < 0;
      }
      i = endA;
      j = endB;
      continue;
    }
    const QChar foldedA = a[i].toCaseFolded();
    const QChar foldedB = b[j].toCaseFolded();
    if (foldedA != foldedB) {
      return foldedA < foldedB;
    }
    ++i;
    ++j;
  }
  if (a.size() - i != b.size() - j) {
    return a.size() - i < b.size() - j;
  }
  return a < b;
}

DroppedFiles expandDroppedFiles(std::span<const std::string> arguments, const FromOutside &fromOutside) {
  Expansion expansion(fromOutside);
  for (const std::string &argument : arguments) {
    expansion.addArgument(argument);
  }
  return expansion.result;
}

void requireAnyFile(const DroppedFiles &dropped) {
  if (dropped.paths.isEmpty()) {
    throw Failure(u"there is no file to drop"_s);
  }
}

} // namespace sonorel::trackchute
