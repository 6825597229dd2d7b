#include "scripts/Webloc.h"

#include "core/state/PathNames.h"
#include "platform/Failure.h"
#include "platform/ShareNames.h"
#include "platform/linux/HostFile.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "platform/linux/RegularFile.h"
#include "platform/linux/SystemError.h"
#include "transfer/BookmarkNames.h"

#include <QVariantMap>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

bool isControl(QChar character) {
  return character.category() == QChar::Other_Control;
}

QByteArray bytesOf(const QString &path) {
  const auto bytes = wholeOf(openRegularFile(path.toStdString()), kLargestBookmark);
  if (!bytes) {
    throw Failure(u"no bookmark file: "_s + path);
  }
  return QByteArray::fromStdString(*bytes);
}

Place hostPlace(const QString &path) {
  return {{}, path.toUtf8(), false, false};
}

// Without a name until it is whole, so that nothing is left of a run that is killed. False where that cannot be done.
bool linkedWhole(const QByteArray &folder, const QByteArray &text, const QString &made) {
  const FileDescriptor file(::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666));
  if (!file.isOpen()) {
    return false;
  }
  writeAll(file, text, made);
  const QByteArray nameless = "/proc/self/fd/" + QByteArray::number(file.get());
  if (::linkat(AT_FDCWD, nameless.constData(), AT_FDCWD, made.toUtf8().constData(), AT_SYMLINK_FOLLOW) != 0) {
    const int error = errno;
    if (error == EEXIST) {
      throw systemFailure(error, made);
    }
    return false;
  }
  return true;
}

void writeBeside(const QByteArray &text, const QString &folder, const QString &made) {
  const QString beside = folder + kTemporaryPrefix.toString() + QString::number(::getpid());
  writeNew(hostPlace(beside), text, beside);
  if (::renameat2(AT_FDCWD, beside.toUtf8().constData(), AT_FDCWD, made.toUtf8().constData(), RENAME_NOREPLACE) !=
      0) {
    const int error = errno;
    ::unlink(beside.toUtf8().constData());
    throw systemFailure(error, made);
  }
}

} // namespace

QString addressInBookmark(const QByteArray &bytes) {
  const QVariant address = LibplistPropertyLists().decode(bytes).toMap().value(u"URL"_s);
  if (address.typeId() != QMetaType::QString || address.toString().trimmed().isEmpty()) {
    throw Failure(u"there is no address in the bookmark file"_s, FailureKind::Damaged);
  }
  const QString text = address.toString().trimmed();
  if (std::any_of(text.cbegin(), text.cend(), isControl)) {
    throw Failure(u"the address in the bookmark file holds a control character"_s, FailureKind::Damaged);
  }
  return text;
}

void convertBookmarkFile(const QString &path) {
  const QByteArray text = shortcutText(addressInBookmark(bytesOf(path))).toUtf8();
  const QString folder = path.left(path.lastIndexOf(u'/') + 1);
  const QString made = folder + withExtension(nameWithoutExtension(path), u"url"_s);
  if (!linkedWhole(folder.toUtf8(), text, made)) {
    writeBeside(text, folder, made);
  }
}

} // namespace sonorel
