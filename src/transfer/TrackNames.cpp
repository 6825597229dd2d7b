#include "transfer/TrackNames.h"

#include "core/state/PathNames.h"
#include "core/state/ShareLayout.h"
#include "link/TextEncoding.h"

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr QStringView kTrimmed = u"!%'(),-./:;?[\\]{}";
constexpr qsizetype kKeptOfParenthesised = 219;
constexpr QStringView kOlderMark = u"$$$$$";

template <typename Predicate> QString trimmedBy(const QString &text, Predicate drops) {
  qsizetype begin = 0;
  qsizetype end = text.size();
  while (begin < end && drops(text[begin])) {
    ++begin;
  }
  while (end > begin && drops(text[end - 1])) {
    --end;
  }
  return text.mid(begin, end - begin);
}

// The first platform shows a list of authors in the text form of a list, with the author in double quotation marks;
// those marks stop the first trim, so only quotes and white space go.
QString trimmedAuthors(const QString &authors) {
  return trimmedBy(authors, [](QChar c) { return c == u'"' || c.isSpace(); });
}

QString trimmedText(const QString &text) {
  const QString first = trimmedBy(text, [](QChar c) { return kTrimmed.contains(c) || c.isSpace(); });
  return trimmedBy(first, [](QChar c) { return c == u'"' || c.isSpace(); });
}

QString part(QString value) {
  QString wrapped = u'(' + value + u')';
  wrapped.remove(u'\\');
  return returnsTitle(wrapped);
}

QString joinedParts(const QStringList &parts) {
  QStringList kept;
  for (const QString &text : parts) {
    if (!text.isEmpty() && text != u"()") {
      kept.append(text);
    }
  }
  return kept.join(u'-');
}

} // namespace

QString returnsTitle(const QString &text) {
  if (text.isEmpty()) {
    return text;
  }
  if (text.startsWith(u'(') && text.endsWith(u')')) {
    return text.mid(1, text.size() - 2);
  }
  const qsizetype close = text.indexOf(u')');
  const QString before = close < 0 ? text : text.left(close);
  const qsizetype open = before.indexOf(u'(');
  return open < 0 ? before : before.mid(open + 1);
}

TrackTexts trackTexts(const TrackTags &tags) {
  TrackTexts texts;
  if (!tags.authors.isEmpty()) {
    texts.authors = part(trimmedAuthors(tags.authors.join(u", "_s)));
  }
  if (!tags.album.isEmpty()) {
    texts.album = part(trimmedText(tags.album));
  }
  if (!tags.title.isEmpty()) {
    texts.title = part(trimmedText(tags.title));
  }
  return texts;
}

QString changeSongFileName(const QString &sourcePath, const std::optional<TrackTags> &tags) {
  const QString ownName = lastPathComponent(sourcePath);
  if (!tags) {
    return ownName;
  }
  const QString parenthesised = u'(' + nameWithoutExtension(sourcePath) + u')';
  const TrackTexts texts = trackTexts(*tags);
  QString name = joinedParts({texts.authors, texts.album, tags->title.isEmpty() ? parenthesised : texts.title});
  if (name.isEmpty()) {
    name = parenthesised;
  }
  name = withExtension(name, pathExtension(sourcePath));
  if (!isLatin1(name)) {
    name = ownName;
  }
  return name.replace(u'_', u' ');
}

QString changeSongFileNameOlderWay(const QString &sourcePath, const std::optional<TrackTags> &tags) {
  const QString ownName = lastPathComponent(sourcePath);
  if (!tags) {
    return ownName;
  }
  const QString parenthesised = u'(' + nameWithoutExtension(sourcePath) + u')';
  QString authors;
  if (!tags->authors.isEmpty()) {
    authors = u'(' + kOlderMark.toString() + tags->authors.join(u", "_s) + kOlderMark.toString() + u')';
    authors.remove(u'\\');
  }
  const QString album = tags->album.isEmpty() ? QString() : u'(' + tags->album + u')';
  const QString title = tags->title.isEmpty() ? parenthesised : u'(' + tags->title + u')';
  QString name = joinedParts({authors, album, title});
  name = withExtension(name.isEmpty() ? parenthesised : name, pathExtension(sourcePath));
  if (!isLatin1(name)) {
    name = ownName;
  }
  return name.replace(u'_', u' ').replace(kOlderMark.toString(), u"_"_s);
}

QString getTitleOfTrack(const QString &sourcePath, const std::optional<TrackTags> &tags) {
  if (tags) {
    const QString authors = trimmedAuthors(tags->authors.join(u", "_s)).remove(u'\\');
    for (const QString &text : {tags->title, tags->album, authors}) {
      if (!text.isEmpty()) {
        return text;
      }
    }
  }
  const QString name = nameWithoutExtension(sourcePath);
  qsizetype cut = name.size() >= 4 ? 3 : name.size() / 2; // as a rule a track number stands in front
  if (cut > 0 && name[cut].isLowSurrogate()) {
    ++cut; // half a pair has no bytes
  }
  return name.mid(cut);
}

QString truncateFileName(const QString &name) {
  QString rest = name;
  while (rest.size() >= kNameLimit) {
    const qsizetype joint = rest.indexOf(u")-("_s);
    if (joint >= 0) {
      rest = rest.mid(joint + 2);
      continue;
    }
    if (rest.startsWith(u'(') && rest.endsWith(u')')) {
      qsizetype kept = kKeptOfParenthesised;
      if (rest[kept - 1].isHighSurrogate()) {
        --kept; // half a pair has no bytes
      }
      return rest.left(kept) + u')';
    }
    return rest;
  }
  return rest;
}

QString withinNameLimit(const QString &relativeName) {
  if (relativeName.size() < kNameLimit) {
    return relativeName;
  }
  const qsizetype slash = relativeName.lastIndexOf(u'/');
  const QString name = relativeName.mid(slash + 1);
  return relativeName.left(slash + 1) +
         withExtension(truncateFileName(nameWithoutExtension(name)), pathExtension(name));
}

QString shortenedRelativeName(const QString &relativeName) {
  QString rest = relativeName;
  while (rest.size() >= kNameLimit && rest.contains(u'/')) {
    rest = rest.mid(rest.indexOf(u'/') + 1);
  }
  return withinNameLimit(rest);
}

QString hierarchyFolder(const QString &sourcePath, bool withArtist) {
  const QStringList components = sourcePath.split(u'/');
  const qsizetype count = components.size();
  if (withArtist && count >= 4) {
    return cleanedName(components[count - 3]) + u'/' + cleanedName(components[count - 2]) + u'/';
  }
  return count >= 3 ? cleanedName(components[count - 2]) + u'/' : QString();
}

} // namespace sonorel
