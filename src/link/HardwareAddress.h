// The product's network hardware address as its address file holds it: on the second line, 17 characters, six
// two-digit hexadecimal groups with one separator character between them. Pure.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace sonorel {

inline constexpr qsizetype kHardwareAddressLength = 17;

// The 17 characters after the first line feed, read as Latin-1; empty when there is no line feed, when fewer follow
// or when they are no text.
[[nodiscard]] QString hardwareAddressIn(const QByteArray &addressFile);
[[nodiscard]] bool isHardwareAddress(QStringView text);

} // namespace sonorel
