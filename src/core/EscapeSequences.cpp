#include "core/EscapeSequences.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr ushort kFirstNonAscii = 0x80;

} // namespace

QString replaceWithEscapeSequencesInString(const QString &text) {
  QString escaped;
  escaped.reserve(text.size());
  for (const QChar character : text) {
    switch (character.unicode()) {
    case u'%':
      escaped += u"%25"_s;
      break;
    case u'@':
      escaped += u"%40"_s;
      break;
    case u';':
      escaped += u"%3B"_s;
      break;
    default:
      escaped += character;
    }
  }
  return escaped;
}

QString undoEscapeSequences(const QString &text) {
  QString plain;
  plain.reserve(text.size());
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text.at(i) == u'%' && i + 2 < text.size()) {
      const QStringView digits = QStringView(text).mid(i + 1, 2);
      bool isNumber = false;
      const ushort code = digits.toUShort(&isNumber, 16);
      // A sign or a blank would pass for a part of a number.
      if (isNumber && code < kFirstNonAscii && digits.at(0).isLetterOrNumber() && digits.at(1).isLetterOrNumber()) {
        plain += QChar(code);
        i += 2;
        continue;
      }
    }
    plain += text.at(i);
  }
  return plain;
}

} // namespace sonorel
