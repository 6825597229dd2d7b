#include "platform/linux/PropertyListText.h"

#include <QDateTime>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

bool isBase64Character(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
}

} // namespace

bool isListInteger(QByteArrayView text) {
  bool valid = false;
  const QByteArrayView digits = text.trimmed();
  const qsizetype sign = digits.startsWith('-') || digits.startsWith('+') ? 1 : 0;
  if (digits.size() > sign + 1 && digits[sign] == '0' && digits[sign + 1] != 'x' && digits[sign + 1] != 'X') {
    return false; // the parser would read it as octal
  }
  if (digits.startsWith("0x") || digits.startsWith("0X")) {
    (void)digits.toLongLong(&valid, 16);
  } else {
    (void)digits.toLongLong(&valid, 10);
  }
  return valid;
}

bool isListReal(QByteArrayView text) {
  const QByteArrayView digits = text.trimmed();
  bool valid = false;
  const double value = digits.toDouble(&valid);
  return valid && std::isfinite(value);
}

bool isListDate(QByteArrayView text) {
  const QString date = QString::fromLatin1(text.trimmed());
  return date.size() == 20 && QDateTime::fromString(date, u"yyyy-MM-dd'T'HH:mm:ss'Z'"_s).isValid();
}

bool isListBase64(QByteArrayView text) {
  qsizetype characters = 0;
  qsizetype padding = 0;
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
      continue;
    }
    if (c == '=') {
      ++padding;
    } else if (padding > 0 || !isBase64Character(c)) {
      return false;
    } else {
      ++characters;
    }
  }
  return padding <= 2 && (characters + padding) % 4 == 0;
}

bool isListEntity(QByteArrayView name) {
  if (name == "lt" || name == "gt" || name == "amp" || name == "apos" || name == "quot") {
    return true;
  }
  if (!name.startsWith('#') || name.size() > 9) {
    return false;
  }
  const bool hexadecimal = name.sliced(1).startsWith('x');
  const QByteArray digits = name.sliced(hexadecimal ? 2 : 1).toByteArray();
  bool valid = false;
  const uint code = digits.toUInt(&valid, hexadecimal ? 16 : 10);
  return valid && code > 0 && code <= 0x10FFFF && !QChar::isSurrogate(code);
}

} // namespace sonorel
