// Writes the tagged fields and records that the lists are made of: kind, int32 length, content. Pure.
#pragma once

#include "favourites/FavouritesModel.h"
#include "link/ByteWriter.h"

#include <QByteArrayView>
#include <QString>

namespace sonorel {

// `writeToStream:Kind:data:`. The length is that of the whole text in the encoding, the bytes end at the first NUL
// character: texts that hold one are cut before they come here.
void writeToStream(const QString &text, quint8 kind, ByteWriter &data, bool utf8);
// `writeDataToStream:Kind:data:`.
void writeDataToStream(QByteArrayView bytes, quint8 kind, ByteWriter &data);

// The item count and the version tag.
void writeListHead(quint32 records, QStringView tag, ByteWriter &data);
// One List1 record under the name as it stands in the file.
void writeListRecord(const FavouriteList &list, const QString &name, ByteWriter &data, bool utf8);
// One List2 record; without an item type it has two fields.
void writeTitleRecord(const FavouriteTitle &title, const QString &serverPath, ByteWriter &data, bool utf8);

} // namespace sonorel
