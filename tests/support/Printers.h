// How failures print the values of Qt.
#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *out) {
  *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray &bytes, std::ostream *out) {
  const QByteArray shown = bytes.left(400).toPercentEncoding(" {}<>[]()\"'=:;,/@!#$&*+?\\");
  *out << '"' << shown.toStdString() << '"' << (bytes.size() > 400 ? "..." : "") << " (" << bytes.size() << " bytes)";
}
