#include "favourites/EmptyPhotoFavourites.h"

#include "favourites/ChunkWriter.h"
#include "favourites/FavouritesFormat.h"
#include "favourites/FieldWriter.h"
#include "link/MessageRecord.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

QByteArray emptyPhotoFavourites() {
  const QByteArray header = messageRecord(u"{1CF4E0EA-EA27-4242-A4BC-993CCA17BFB2}"_s,
                                          kPhotoFavouritesCommand.toString(), kMessageKind.toString());
  const auto list1 = [](std::size_t) {
    ByteWriter content;
    writeListHead(0, kAlbumsTag, content);
    return content.take();
  };
  return assembledFile(header, compressedChunks(1, 0, list1));
}

} // namespace sonorel
