// The list of photo favourites without an album that the program carries as a resource, for players that come without
// one. Pure.
#pragma once

#include <QByteArray>

namespace sonorel {

// The same bytes at every call: the GUID of the header is fixed, so that a build can be repeated.
[[nodiscard]] QByteArray emptyPhotoFavourites();

} // namespace sonorel
