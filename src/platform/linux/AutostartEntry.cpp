#include "platform/linux/AutostartEntry.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr QStringView kExecKey = u"Exec=";
constexpr QByteArrayView kOwnExec = "Exec=\""; // a program in quotes and nothing else is ours
constexpr QStringView kPathKey = u"X-Sonorel-Path=";
constexpr QStringView kHideKey = u"X-Sonorel-Hide=";

QString escapedValue(const QString &value) {
  QString escaped;
  for (const QChar c : value) {
    if (c == u'\\') {
      escaped += u"\\\\"_s;
    } else if (c == u'\n') {
      escaped += u"\\n"_s;
    } else {
      escaped += c;
    }
  }
  return escaped;
}

QString unescapedValue(QStringView value) {
  QString text;
  for (qsizetype i = 0; i < value.size(); ++i) {
    if (value[i] == u'\\' && i + 1 < value.size()) {
      ++i;
      text += value[i] == u'n' ? QChar(u'\n') : value[i];
    } else {
      text += value[i];
    }
  }
  return text;
}

// Quoted for the Exec key, which is unescaped once as a value and once as a command line.
QString quotedCommand(const QString &command) {
  QString quoted;
  for (const QChar c : command) {
    if (c == u'"' || c == u'`' || c == u'$' || c == u'\\') {
      quoted += u'\\';
    } else if (c == u'%') {
      quoted += u'%';
    }
    quoted += c;
  }
  return escapedValue(u'"' + quoted + u'"');
}

QString execLine(const QString &command) {
  return kExecKey.toString() + quotedCommand(command);
}

} // namespace

QByteArray encodeAutostartEntry(const LoginItem &item, const QString &command) {
  QString entry = u"[Desktop Entry]\nType=Application\nName=Sonorel\n"_s;
  entry += execLine(command) + u'\n';
  entry += kPathKey.toString() + escapedValue(item.path) + u'\n';
  entry += kHideKey.toString() + (item.hide ? u"true\n"_s : u"false\n"_s);
  return entry.toUtf8();
}

QByteArray withCommand(const QByteArray &bytes, const QString &command) {
  QList<QByteArray> lines = bytes.split('\n');
  int groups = 0;
  for (QByteArray &line : lines) {
    groups += line.startsWith('[') ? 1 : 0;
    if (groups == 1 && line.startsWith(kOwnExec) && line.endsWith('"')) {
      line = execLine(command).toUtf8();
    }
  }
  return lines.join('\n');
}

std::optional<LoginItem> decodeAutostartEntry(const QByteArray &bytes) {
  LoginItem item;
  const QString text = QString::fromUtf8(bytes);
  for (const QStringView line : QStringView(text).split(u'\n')) {
    if (line.startsWith(kPathKey)) {
      item.path = unescapedValue(line.sliced(kPathKey.size()));
    } else if (line.startsWith(kHideKey)) {
      item.hide = line.sliced(kHideKey.size()) == u"true";
    }
  }
  if (item.path.isEmpty()) {
    return std::nullopt;
  }
  return item;
}

} // namespace sonorel
