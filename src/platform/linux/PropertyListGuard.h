// Looks through the bytes of a property list before the parser sees them: the parser accepts cut lists, wrong
// numbers and bad base64 in silence, crashes on deep nesting and expands shared objects without bound. What passes
// here is complete, at most 64 levels deep and bounded in what it will need. Pure; any thread.
#pragma once

#include "platform/PropertyLists.h"

#include <QByteArrayView>

#include <span>

namespace sonorel {

inline constexpr qsizetype kPropertyListObjects = 4'000'000;       // values and keys of an XML list
inline constexpr qsizetype kBinaryPropertyListObjects = 1'000'000; // of a binary one, shared ones counted each time
// What the parser spends more on than the size of a list says, bounded to a few seconds: the bytes that it moves for
// the entities of a text, and the keys of a dictionary times themselves.
inline constexpr quint64 kPropertyListMovedBytes = 20'000'000'000;
inline constexpr quint64 kPropertyListComparedKeys = 100'000'000'000;

// "bplist" at the front.
[[nodiscard]] bool isBinaryPropertyList(QByteArrayView bytes);
// Throws Failure (Damaged) above PropertyLists::kSizeLimit; both checks begin with it.
void checkPropertyListSize(QByteArrayView bytes);
// Each throws Failure (Damaged) with the reason and the byte at which it was found.
void checkXmlPropertyList(QByteArrayView bytes);
// As checkXmlPropertyList, and gives the list without what is not wanted (PropertyLists::WantedKeys), so that the
// parser builds no tree of it. A key that is not written in plain characters stays.
[[nodiscard]] QByteArray wantedOfXmlPropertyList(QByteArrayView bytes, std::span<const QByteArrayList> keys);
void checkBinaryPropertyList(QByteArrayView bytes);

[[noreturn]] void refusePropertyList(const QString &reason);
[[noreturn]] void refusePropertyList(const QString &reason, qsizetype position);

} // namespace sonorel
