#include "link/MessageRecord.h"

#include "link/ByteWriter.h"

namespace sonorel {

namespace {

constexpr qsizetype kInitialCapacity = 80;

} // namespace

QByteArray messageRecord(const QString &GUID, const QString &command, const QString &msgKind) {
  ByteWriter record(kInitialCapacity);
  record.u32(kRecordFieldCount);
  record.u32(kRecordGuidLength);
  record.bytes(GUID.toUtf8());
  record.u32(static_cast<quint32>(command.size()));
  record.bytes(command.toUtf8());
  record.u32(kRecordKindLength);
  record.bytes(msgKind.toUtf8());
  return record.take();
}

} // namespace sonorel
