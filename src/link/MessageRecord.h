// The record of the message files on the share and of the header of the favourites files: the integer 3, then three
// texts with a length before each (GUID, command, kind). See docs/formats/messages.md. Pure.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace sonorel {

inline constexpr quint32 kRecordFieldCount = 3;
// Written as constants, not measured; they fit the GUIDs and kinds that the program uses.
inline constexpr quint32 kRecordGuidLength = 38;
inline constexpr quint32 kRecordKindLength = 1;
inline constexpr QStringView kMessageKind = u"1";

// The command's length counts its characters, the bytes are UTF-8.
[[nodiscard]] QByteArray messageRecord(const QString &GUID, const QString &command, const QString &msgKind);

} // namespace sonorel
