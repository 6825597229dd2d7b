#include "transfer/ProcessBookmark.h"

#include "core/state/PathNames.h"
#include "platform/Failure.h"
#include "transfer/BookmarkNames.h"
#include "transfer/Removal.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint32 kPrivateMode = 0700;

QString temporaryFolder() {
  return u"/private/tmp/Bookmark"_s;
}

QString urlFileBeside(const QString &path) {
  return path.left(path.lastIndexOf(u'/') + 1) + withExtension(nameWithoutExtension(path), u"url"_s);
}

QString escaped(QString text) {
  return text.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
}

} // namespace

QString bookmarkScript(const QString &converter, const QString &path) {
  return u"set x to do shell script \""_s + escaped(u"sh \""_s + converter + u"\" \""_s + path + u'"') + u'"';
}

std::optional<QString> ProcessBookmark::processBookmark(const QString &path, const std::stop_token &stop) {
  m_stop = stop;
  std::optional<QString> made;
  try {
    const auto facts = m_files.attributes(path, Links::Follow);
    if (!facts || facts->kind != FileKind::File || facts->size > kLargestBookmark) {
      m_reason = u"no bookmark file: "_s + path;
    } else {
      made = convertBeside(path);
      if (!made) {
        made = convertInTemporaryFolder(path);
      }
    }
  } catch (const Failure &failure) {
    m_reason = failure.reason();
  }
  if (!made) {
    m_desktop.log(m_reason ? u"Bookmark convertion AppleScript failed: "_s + *m_reason
                           : u"Bookmark convertion AppleScript has no result."_s);
  }
  return made;
}

std::optional<QString> ProcessBookmark::convertBeside(const QString &path) {
  const QString made = urlFileBeside(path);
  if (m_files.presence(made) != Presence::Absent) {
    return std::nullopt;
  }
  return convert(path, made) ? std::optional(made) : std::nullopt;
}

std::optional<QString> ProcessBookmark::convertInTemporaryFolder(const QString &path) {
  const QString folder = temporaryFolder();
  removeTemporaryFolder(); // an earlier client may have left one
  m_temporaryFolderUsed = true;
  m_files.createFolder(folder, kPrivateMode);
  const QString copy = folder + u'/' + lastPathComponent(path);
  m_files.copy(path, copy);
  const QString made = urlFileBeside(copy);
  if (convert(copy, made)) {
    return made;
  }
  clear();
  return std::nullopt;
}

bool ProcessBookmark::convert(const QString &path, const QString &made) {
  m_reason = m_scripts.convertBookmark(path, m_stop);
  const bool isThere = m_files.presence(made) == Presence::Present;
  if (m_reason && isThere) {
    m_files.removeFile(made); // what a failed converter left
  }
  return !m_reason && isThere;
}

void ProcessBookmark::clear() {
  if (std::exchange(m_temporaryFolderUsed, false)) {
    removeTemporaryFolder();
  }
}

void ProcessBookmark::removeTemporaryFolder() {
  try {
    m_files.removeTree(temporaryFolder());
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      logNotRemoved(m_desktop, temporaryFolder(), failure);
    }
  }
}

} // namespace sonorel
