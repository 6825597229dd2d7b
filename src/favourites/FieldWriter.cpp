#include "favourites/FieldWriter.h"

#include "favourites/FavouritesFormat.h"
#include "link/TextEncoding.h"

#include <algorithm>

namespace sonorel {

namespace {

bool isAscii(QStringView text) {
  return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() < 0x80; });
}

} // namespace

void writeToStream(const QString &text, quint8 kind, ByteWriter &data, bool utf8) {
  // Most texts are plain, the same in both encodings, and need no look into tables.
  const QByteArray bytes = isAscii(text) ? text.toLatin1() : encodeText(text, utf8);
  const qsizetype end = bytes.indexOf('\0');
  data.u8(kind);
  data.u32(static_cast<quint32>(bytes.size()));
  data.bytes(end < 0 ? QByteArrayView(bytes) : QByteArrayView(bytes).first(end));
}

void writeDataToStream(QByteArrayView bytes, quint8 kind, ByteWriter &data) {
  data.u8(kind);
  data.u32(static_cast<quint32>(bytes.size()));
  data.bytes(bytes);
}

void writeListHead(quint32 records, QStringView tag, ByteWriter &data) {
  data.u32(records + 1); // the version tag counts as one item
  writeDataToStream(tag.toLatin1(), kFurtherField, data);
}

void writeListRecord(const FavouriteList &list, const QString &name, ByteWriter &data, bool utf8) {
  writeToStream(name, kLeadingField, data, utf8);
  data.u32(kList1Fields);
  writeToStream(list.playlistId, kFurtherField, data, utf8);
  writeToStream(list.locationId, kFurtherField, data, utf8);
  writeDataToStream(list.guid, kFurtherField, data);
}

void writeTitleRecord(const FavouriteTitle &title, const QString &serverPath, ByteWriter &data, bool utf8) {
  writeToStream(serverPath, kLeadingField, data, utf8);
  data.u32(title.itemType ? kTitleFields : kTitleFieldsOfVaultbox1);
  writeDataToStream(title.checkSum, kFurtherField, data);
  writeDataToStream(title.guid, kFurtherField, data);
  if (title.itemType) {
    writeToStream(*title.itemType, kFurtherField, data, utf8);
  }
}

} // namespace sonorel
