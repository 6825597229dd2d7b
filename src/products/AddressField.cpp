#include "products/AddressField.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kAddressParts = 4;

bool isLetter(char32_t character) {
  return QChar::isLetter(character) || QChar::isMark(character);
}

bool isRefusedPunctuation(char32_t character) {
  return character < 0x80 &&
         QStringView(u"\"!%'(),-/:;?[\\]{}@#&*_").contains(QChar(static_cast<char16_t>(character)));
}

bool isControl(char32_t character) {
  const auto category = QChar::category(character);
  return category == QChar::Other_Control || category == QChar::Other_Format;
}

bool isWhiteSpaceOrLineEnd(char32_t character) {
  return QChar::isSpace(character);
}

void deleteFirst(QString &text, bool (*matches)(char32_t)) {
  for (qsizetype i = 0; i < text.size();) {
    const bool pair = i + 1 < text.size() && text.at(i).isHighSurrogate() && text.at(i + 1).isLowSurrogate();
    const char32_t character = pair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode();
    const qsizetype units = pair ? 2 : 1;
    if (matches(character)) {
      text.remove(i, units);
      return;
    }
    i += units;
  }
}

} // namespace

QString controlTextDidChange(const QString &text) {
  QString cleaned = text;
  if (cleaned.size() > kAddressFieldLength) {
    cleaned.chop(1);
  }
  if (cleaned.endsWith(u'.') && cleaned.count(u'.') >= kAddressParts) {
    cleaned.chop(1);
  }
  deleteFirst(cleaned, isLetter);
  deleteFirst(cleaned, [](char32_t character) { return QChar::isSymbol(character); });
  deleteFirst(cleaned, isRefusedPunctuation);
  deleteFirst(cleaned, isControl);
  deleteFirst(cleaned, isWhiteSpaceOrLineEnd);
  return cleaned;
}

bool fitsAddressField(const QString &text) {
  for (qsizetype length = 1; length <= text.size(); ++length) {
    const QString typed = text.left(length);
    if (controlTextDidChange(typed) != typed) {
      return false;
    }
  }
  return true;
}

} // namespace sonorel
