// The thirteen languages in the order of the language pop-up, and the one that fits a system language. Pure.
#pragma once

#include <QString>
#include <QStringList>

namespace sonorel {

inline constexpr QStringView kDefaultLanguageFile = u"StringsEnglish";

// The names of the strings files; an entry of the pop-up is a name without its first seven characters.
[[nodiscard]] QStringList languageFiles();
[[nodiscard]] QStringList languageTitles();
// For a system language such as "de-AT"; English for every language that is not among the seven detected ones.
[[nodiscard]] QString languageFileFor(const QString &systemLanguage);

} // namespace sonorel
