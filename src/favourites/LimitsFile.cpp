#include "favourites/LimitsFile.h"

#include "platform/Failure.h"

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

struct FileKey {
  const char *enable;
  const char *limit;
  size_t index; // in KeyLimits
};

// The order of the file.
constexpr std::array<FileKey, 4> kKeys{{{"GREEN_ENABLED=", "GREEN_LIMIT=", 1},
                                        {"YELLOW_ENABLED=", "YELLOW_LIMIT=", 2},
                                        {"RED_ENABLED=", "RED_LIMIT=", 0},
                                        {"BLUE_ENABLED=", "BLUE_LIMIT=", 3}}};

qsizetype valuePosition(const QByteArray &file, const char *key) {
  const qsizetype found = file.indexOf(key);
  if (found < 0) {
    throw Failure(u"the limits file has no "_s + QString::fromLatin1(key), FailureKind::Damaged);
  }
  return found + static_cast<qsizetype>(qstrlen(key));
}

qsizetype lineEnd(const QByteArray &file, qsizetype position) {
  while (position < file.size() && file[position] != '\r' && file[position] != '\n') {
    ++position;
  }
  return position;
}

// The bytes of the character at the position: more than one when an odd value is no digit.
qsizetype characterSize(const QByteArray &file, qsizetype position) {
  qsizetype end = position + 1;
  while (end < file.size() && (static_cast<quint8>(file[position]) & 0xC0) == 0xC0 &&
         (static_cast<quint8>(file[end]) & 0xC0) == 0x80) {
    ++end;
  }
  return end - position;
}

// The leading decimal number behind blanks, else 0.
int leadingNumber(const QByteArray &text) {
  qsizetype i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) {
    ++i;
  }
  const bool negative = i < text.size() && text[i] == '-';
  int value = 0;
  for (i += negative ? 1 : 0; i < text.size() && text[i] >= '0' && text[i] <= '9' && value < 100'000'000; ++i) {
    value = value * 10 + (text[i] - '0');
  }
  return negative ? -value : value;
}

QString joined(const KeyLimits &values, int KeyLimit::*member) {
  QString text = u"#"_s;
  for (const FileKey &key : kKeys) {
    text += QString::number(values[key.index].*member) + u'#';
  }
  return text;
}

QByteArray valueAt(const QString &text, qsizetype index) {
  const QStringList parts = text.split(u'#');
  if (index + 1 >= parts.size()) {
    throw Failure(u"the values for the limits file are incomplete"_s);
  }
  return parts[index + 1].toUtf8();
}

} // namespace

KeyLimits readLimits(const QByteArray &file) {
  KeyLimits values;
  for (const FileKey &key : kKeys) {
    const qsizetype enable = valuePosition(file, key.enable);
    const qsizetype limit = valuePosition(file, key.limit);
    values[key.index].enable = leadingNumber(file.mid(enable, 1));
    values[key.index].limit = leadingNumber(file.mid(limit, lineEnd(file, limit) - limit));
  }
  return values;
}

QByteArray editedLimits(const QByteArray &file, const QString &enables, const QString &limits) {
  QByteArray edited = file;
  for (size_t i = 0; i < kKeys.size(); ++i) {
    const qsizetype position = valuePosition(edited, kKeys[i].enable);
    edited.replace(position, characterSize(edited, position), valueAt(enables, static_cast<qsizetype>(i)));
  }
  for (size_t i = 0; i < kKeys.size(); ++i) {
    const qsizetype position = valuePosition(edited, kKeys[i].limit);
    edited.replace(position, lineEnd(edited, position) - position, valueAt(limits, static_cast<qsizetype>(i)));
  }
  return edited;
}

QString enablesText(const KeyLimits &values) {
  return joined(values, &KeyLimit::enable);
}

QString limitsText(const KeyLimits &values) {
  return joined(values, &KeyLimit::limit);
}

} // namespace sonorel
