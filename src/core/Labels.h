// Every text of the window that changes with the language or with the product. Pure.
#pragma once

#include "core/state/Strings.h"

#include <QMap>
#include <QString>

namespace sonorel {

inline constexpr QStringView kShortVersion = u"1.24.04";
inline constexpr QStringView kFullVersion = u"1.24.04.0000";

// By the key in the strings table; the product's name and the version are in their places.
[[nodiscard]] QMap<QString, QString> windowLabels(const Strings &strings, const QString &deviceName);

} // namespace sonorel
