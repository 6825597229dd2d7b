#include "favourites/ProductVersion.h"

#include "core/state/LogException.h"
#include "link/TextEncoding.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kShortestText = 13;
constexpr qsizetype kVersionLength = 12;
constexpr quint64 kLargestFile = 1024 * 1024;

// Behind the first line break, which is CR LF, LF or CR; -1 without one.
qsizetype secondLine(const QString &text) {
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text.at(i) == u'\r') {
      return i + (text.mid(i + 1, 1) == u"\n"_s ? 2 : 1);
    }
    if (text.at(i) == u'\n') {
      return i + 1;
    }
  }
  return -1;
}

} // namespace

QString utf8AnswerOfProductName(const QByteArray &fileBytes) {
  QString text = fromStrictUtf8(fileBytes).value_or(QString());
  if (text.startsWith(QChar::ByteOrderMark)) {
    text.remove(0, 1);
  }
  const qsizetype start = secondLine(text);
  if (text.size() < kShortestText || start < 0) {
    return u"NO"_s;
  }
  const QString version = text.mid(start, kVersionLength);
  return version.size() == kVersionLength && version >= kFirstUtf8Version ? u"YES"_s : u"NO"_s;
}

ProductVersion::ProductVersion(FileSystem &files, Desktop &desktop, Settings &settings, const Session &session,
                               ShareFolders folders)
    : m_files(files), m_desktop(desktop), m_settings(settings), m_session(session), m_folders(std::move(folders)) {}

QString ProductVersion::checkAU5SoftwareVersion() {
  const QString found = answer();
  try {
    m_settings.setAndSave(u"AU5SupportsUnicode"_s, found);
  } catch (const std::exception &e) {
    logException(m_desktop, u"checkAU5SoftwareVersion"_s, e);
  }
  return found;
}

QString ProductVersion::answer() {
  if (m_session.deviceName() != kAuralis5) {
    return u"NO"_s;
  }
  try {
    return utf8AnswerOfProductName(m_files.read(m_folders.system() + kProductNameFileName.toString(), kLargestFile));
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      logException(m_desktop, u"checkAU5SoftwareVersion"_s, failure);
    }
    return u"NO"_s;
  }
}

} // namespace sonorel
