#include "core/Languages.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kPrefixLength = 7; // "Strings"

constexpr std::array<std::pair<QStringView, QStringView>, 7> kDetected{{{u"da", u"StringsDansk"},
                                                                        {u"fr", u"StringsFrancais"},
                                                                        {u"de", u"StringsDeutsch"},
                                                                        {u"es", u"StringsEspanol"},
                                                                        {u"it", u"StringsItaliano"},
                                                                        {u"nl", u"StringsNederlands"},
                                                                        {u"sv", u"StringsSvenska"}}};

} // namespace

QStringList languageFiles() {
  return {u"StringsEnglish"_s,          u"StringsDansk"_s,    u"StringsDeutsch"_s,  u"StringsSvenska"_s,
          u"StringsEspanol"_s,          u"StringsFrancais"_s, u"StringsItaliano"_s, u"StringsNederlands"_s,
          u"StringsJapanese"_s,         u"StringsKorean"_s,   u"StringsRussian"_s,  u"StringsChineseTraditional"_s,
          u"StringsChineseSimplified"_s};
}

QStringList languageTitles() {
  QStringList titles = languageFiles();
  for (QString &title : titles) {
    title.remove(0, kPrefixLength);
  }
  return titles;
}

QString languageFileFor(const QString &systemLanguage) {
  const auto end = std::find_if(systemLanguage.begin(), systemLanguage.end(),
                                [](QChar one) { return one == u'-' || one == u'_'; });
  const QStringView code(systemLanguage.begin(), end);
  const auto found =
      std::find_if(kDetected.begin(), kDetected.end(), [code](const auto &entry) { return entry.first == code; });
  return (found == kDetected.end() ? kDefaultLanguageFile : found->second).toString();
}

} // namespace sonorel
