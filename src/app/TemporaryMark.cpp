#include "app/TemporaryMark.h"

#include "platform/Failure.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSaveFile>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kDigits = 8;

bool isMark(const QByteArray &text) {
  return text.size() == kDigits && std::all_of(text.begin(), text.end(), [](char c) {
           return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
         });
}

} // namespace

QString temporaryMark(const QString &data) {
  const QString path = data + u"/TemporaryMark"_s;
  QFile kept(path);
  if (kept.open(QIODevice::ReadOnly)) {
    if (const QByteArray text = kept.read(kDigits + 1).trimmed(); isMark(text)) {
      return QString::fromLatin1(text);
    }
  }
  const QByteArray mark = QByteArray::number(QRandomGenerator::system()->generate(), 16).rightJustified(kDigits, '0');
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(mark) != kDigits || !file.commit()) {
    throw Failure(u"%1 cannot be written: %2"_s.arg(path, file.errorString()));
  }
  return QString::fromLatin1(mark);
}

} // namespace sonorel
