// Texts in the files that the server reads: UTF-8, or Windows-1252 by an own table. Pure; never fails.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <optional>

namespace sonorel {

// Composed to NFC first; one "?" for each character that does not fit, a pair of surrogates being one character.
[[nodiscard]] QByteArray toWindows1252(const QString &text);
// The five bytes without a character (81, 8D, 8F, 90, 9D) read as the control of the same number, and back.
[[nodiscard]] QString fromWindows1252(QByteArrayView bytes);
// nullopt for anything that is no valid UTF-8. A byte-order mark is kept.
[[nodiscard]] std::optional<QString> fromStrictUtf8(QByteArrayView bytes);

// UTF-8 when wanted and valid, Windows-1252 otherwise: bytes that somebody wrote are never turned into substitutes.
[[nodiscard]] QString decodeText(QByteArrayView bytes, bool utf8);
[[nodiscard]] QByteArray encodeText(const QString &text, bool utf8);

// Every unit is at most 0xFF.
[[nodiscard]] bool isLatin1(QStringView text);

} // namespace sonorel
