// Which names the agent posts, and in which form. The client takes some names for markers, so a name that
// it could misread is refused here, never there. Pure; any thread.
#pragma once

#include <QString>

#include <optional>

namespace sonorel::trackchute {

// Why the name cannot be used; nullopt when it can.
[[nodiscard]] std::optional<QString> refusalOfPlaylistName(const QString &name);

// The same for the name of a photo album, which the client never frames. Two names mean pictures without an album and
// a colour's name would put them onto a colour key.
[[nodiscard]] std::optional<QString> refusalOfAlbumName(const QString &name);
// Why the text cannot be a bookmark's address.
[[nodiscard]] std::optional<QString> refusalOfAddress(const QString &address);

// The name as it is posted for a product: framed by "@~" where the product replaces a framed list that is dropped
// again, bare where it does not ("Auralis 5") or where the frame would show (pictures on "Auracore 5").
[[nodiscard]] QString postedPlaylistName(const QString &name, const QString &product, bool holdsPictures);

// True when a list that is dropped again does not replace its earlier self.
[[nodiscard]] bool appearsTwiceWhenDroppedAgain(const QString &product, bool holdsPictures);

[[nodiscard]] bool isKnownProduct(const QString &product);

} // namespace sonorel::trackchute
