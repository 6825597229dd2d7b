// What may stand inside the elements of an XML property list. The parser reads a wrong number as 0 and wrong
// base64 as nothing, so that each is looked at first. Pure; any thread.
#pragma once

#include <QByteArrayView>

namespace sonorel {

// A whole number that fits 64 signed bits; white space around it is allowed, as in all four.
[[nodiscard]] bool isListInteger(QByteArrayView text);
[[nodiscard]] bool isListReal(QByteArrayView text);
[[nodiscard]] bool isListDate(QByteArrayView text); // 2026-01-31T12:00:00Z
[[nodiscard]] bool isListBase64(QByteArrayView text);
// The name between "&" and ";": the five of XML, or a character's number.
[[nodiscard]] bool isListEntity(QByteArrayView name);

} // namespace sonorel
