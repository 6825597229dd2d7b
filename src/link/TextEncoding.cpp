#include "link/TextEncoding.h"

#include <QStringConverter>

#include <algorithm>
#include <array>

namespace sonorel {

namespace {

constexpr char16_t kFirstOfTable = 0x80;

// The characters of the bytes 80 to 9F.
constexpr std::array<char16_t, 32> kTable{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                          0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                          0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                          0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char byteOf(char16_t unit) {
  if (unit < kFirstOfTable || (unit >= 0xA0 && unit <= 0xFF)) {
    return static_cast<char>(unit);
  }
  const auto found = std::find(kTable.begin(), kTable.end(), unit);
  return found == kTable.end() ? '?' : static_cast<char>(kFirstOfTable + (found - kTable.begin()));
}

} // namespace

QByteArray toWindows1252(const QString &text) {
  const QString composed = text.normalized(QString::NormalizationForm_C);
  QByteArray bytes;
  bytes.reserve(composed.size());
  for (qsizetype i = 0; i < composed.size(); ++i) {
    const QChar unit = composed.at(i);
    if (unit.isHighSurrogate() && i + 1 < composed.size() && composed.at(i + 1).isLowSurrogate()) {
      ++i;
      bytes.append('?');
    } else {
      bytes.append(byteOf(unit.unicode()));
    }
  }
  return bytes;
}

QString fromWindows1252(QByteArrayView bytes) {
  QString text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto value = static_cast<quint8>(byte);
    text.append(QChar(value >= 0x80 && value < 0xA0 ? kTable.at(value - kFirstOfTable) : char16_t{value}));
  }
  return text;
}

std::optional<QString> fromStrictUtf8(QByteArrayView bytes) {
  // ConvertInitialBom: a mark at the beginning belongs to the text, which is written back as it was.
  QStringDecoder decoder(QStringDecoder::Utf8,
                         QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
  const QString text = decoder(bytes);
  return decoder.hasError() ? std::nullopt : std::optional(text);
}

QString decodeText(QByteArrayView bytes, bool utf8) {
  if (utf8) {
    if (const auto text = fromStrictUtf8(bytes)) {
      return *text;
    }
  }
  return fromWindows1252(bytes);
}

QByteArray encodeText(const QString &text, bool utf8) {
  return utf8 ? text.toUtf8() : toWindows1252(text);
}

bool isLatin1(QStringView text) {
  return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() <= 0xFF; });
}

} // namespace sonorel
