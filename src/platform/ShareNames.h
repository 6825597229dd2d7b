// Names on a product's share that several rooms read and write: the share's own, its files', the products'. Fixed,
// also where they are misspelt: products and other clients use the same ones. The paths that are made of them, and
// what a playlist's name can mean, stand in core/state/ShareLayout.h.
#pragma once

#include <QStringView>

namespace sonorel {

inline constexpr QStringView kShareName = u"VB-SHARE$";
inline constexpr QStringView kMusicFolderLiteral = u"/Volumes/VB-SHARE$/Music/Mac/";

// Files of the System folder that a product brings with it.
inline constexpr QStringView kProductNameFileName = u"OrvProductName.orv";
inline constexpr QStringView kAddressFileName = u"MacIPAdress.orv";
inline constexpr QStringView kLimitsFileName = u"OrvSpecialFavouriteLimits.orv";

// What clients put beside the user's files while they work: temporary files, which the cleanup after a connection
// removes when they were left, and the lock of the favourites, which it leaves alone. scripts/PictureFile.cpp has the
// prefix once more, because the artwork exporter carries no Qt.
inline constexpr QStringView kTemporaryPrefix = u".sonorel-";
inline constexpr QStringView kShareLockName = u".sonorel-lock";

// Product names, as the server writes them.
inline constexpr QStringView kAuralis5 = u"Auralis 5";
inline constexpr QStringView kVaultbox1 = u"Vaultbox 1";
inline constexpr QStringView kAuracore5 = u"Auracore 5";

} // namespace sonorel
