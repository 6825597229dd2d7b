// The limits file "OrvSpecialFavouriteLimits.orv" as bytes: docs/formats/limits.md. Pure; any thread. Everything that
// is not a value stays as it is, byte order mark and line ends included.
#pragma once

#include <QByteArray>
#include <QString>

#include <array>

namespace sonorel {

struct KeyLimit {
  int enable = 0; // 1: the limit counts
  int limit = 0;  // items on the key
  bool operator==(const KeyLimit &) const = default;
};
using KeyLimits = std::array<KeyLimit, 4>; // Red, Green, Yellow, Blue

// Throws Failure (Damaged) when one of the eight keys is missing.
[[nodiscard]] KeyLimits readLimits(const QByteArray &file);
// enables and limits in the form "#green#yellow#red#blue#". Throws Failure (Damaged).
[[nodiscard]] QByteArray editedLimits(const QByteArray &file, const QString &enables, const QString &limits);
[[nodiscard]] QString enablesText(const KeyLimits &values);
[[nodiscard]] QString limitsText(const KeyLimits &values);

} // namespace sonorel
