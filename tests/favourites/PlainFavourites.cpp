#include "PlainFavourites.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QStringList kColours{u"Red"_s, u"Green"_s, u"Yellow"_s, u"Blue"_s};

bool isKeyId(const QString &id) {
  return QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s}.contains(id);
}

int highest(const QList<QString> &ids) {
  int found = 0;
  for (const QString &id : ids) {
    found = qMax(found, id.toInt());
  }
  return found;
}

QString colourOf(const QString &name) {
  return name.startsWith(u"@!!!"_s) && name.endsWith(u"!!!@"_s) ? name.mid(4, name.size() - 8) : name;
}

void addName(QStringList &names, const QString &name) {
  if (!names.contains(name)) {
    names.append(name);
  }
}

} // namespace

QString PlainFavourites::afterWriting(QString text) const {
  for (QChar &character : text) {
    if (!m_utf8 && character.unicode() > 0xFF) {
      character = u'?';
    }
  }
  return text;
}

QList<PlainFavourites::Entry> PlainFavourites::dictionary() {
  QList<Entry> entries;
  for (const PlainList &list : file.value_or(QList<PlainList>())) {
    Entry entry;
    static_cast<PlainList &>(entry) = list;
    entry.read = list.name;
    entry.dictionaryName = isKeyId(list.id) && !vaultbox() ? list.name : u"@~"_s + list.name + u"@~"_s;
    entries.append(entry);
  }
  if (!vaultbox()) {
    repairKeys(entries);
  }
  renumber(entries);
  return entries;
}

void PlainFavourites::repairKeys(QList<Entry> &entries) {
  QList<Entry> keys;
  QList<Entry> rest = entries;
  for (int key = 1; key <= 4; ++key) {
    for (qsizetype i = 0; i < rest.size(); ++i) {
      if (rest[i].id == QString::number(key)) {
        keys.append(rest.takeAt(i));
        break;
      }
    }
  }
  if (keys.size() == 4) {
    entries = keys + rest;
    return;
  }
  for (int key = 4; key >= 1; --key) {
    Entry made;
    made.name = made.dictionaryName = kColours[key - 1];
    made.id = QString::number(key);
    made.serial = -key;
    entries.prepend(made);
  }
}

// Every later holder of a number gets the highest plus one.
void PlainFavourites::renumber(QList<Entry> &entries) {
  const auto ids = [&entries] {
    QStringList all;
    for (const Entry &entry : entries) {
      all.append(entry.id);
    }
    return all;
  };
  nextId = highest(ids()) + 1;
  for (qsizetype i = 0; i < entries.size(); ++i) {
    if (ids().first(i).contains(entries[i].id)) {
      entries[i].id = QString::number(nextId);
      nextId = highest(ids()) + 1;
    }
  }
}

void PlainFavourites::write(const QList<Entry> &entries) {
  QList<PlainList> lists;
  for (const Entry &entry : entries) {
    PlainList list = entry;
    const QStringList parts = entry.dictionaryName.split(u"@~"_s);
    list.name = entry.read.value_or(afterWriting(parts.size() > 1 ? parts[1] : entry.dictionaryName));
    for (PlainTitle &title : list.titles) {
      title.path = afterWriting(title.path);
    }
    lists.append(list);
  }
  file = lists;
}

void PlainFavourites::connect() {
  write(dictionary());
}

void PlainFavourites::enableLimits() {
  if (limitsFile) {
    for (PlainLimit &key : *limitsFile) {
      key.enable = 1;
    }
    m_limits = *limitsFile;
  }
}

PlainTitle PlainFavourites::title(const QString &path, const QString &type) {
  return {path, vaultbox() ? QString() : type, nextSerial++};
}

QStringList PlainFavourites::build(const QList<PlainSong> &songs, Titles &titles) {
  QStringList names;
  for (const PlainSong &song : songs) {
    addName(names, song.playlist);
  }
  for (const QString &name : QStringList(names)) {
    if (name == u"N0PL@YL!ST") {
      buildLooseSongs(songs, names, titles);
      continue;
    }
    QList<PlainTitle> &list = titles[colourOf(name)];
    list.clear();
    for (const PlainSong &song : songs) {
      if (song.playlist != name || !song.transferred) {
        continue;
      }
      if (colourOf(name) == name) {
        list.append(title(QString(song.path).replace(u"@@@@@"_s, u"\\"_s), u"1"_s));
      } else {
        const QString album = song.album.isEmpty() ? u"Unknown"_s : QString(song.album).replace(u'_', u' ');
        list.removeIf([&album](const PlainTitle &other) { return other.path == album; });
        list.append(title(album, u"2"_s));
      }
    }
  }
  return names;
}

void PlainFavourites::buildLooseSongs(const QList<PlainSong> &songs, QStringList &names, Titles &titles) {
  if (vaultbox()) {
    return;
  }
  names.removeAll(u"N0PL@YL!ST"_s);
  QStringList albums;
  QMap<QString, QList<PlainSong>> byAlbum;
  for (const PlainSong &song : songs) {
    if (song.playlist == u"N0PL@YL!ST" && song.transferred) {
      const QString album = song.album.isEmpty() ? u"Unknown"_s : QString(song.album).replace(u'_', u' ');
      addName(albums, album);
      byAlbum[album].append(song);
    }
  }
  for (const QString &album : albums) {
    if (byAlbum[album].size() > 1) {
      const QString name = u"@~"_s + album + u"@~"_s;
      addName(names, name);
      titles[name].clear();
      for (const PlainSong &song : byAlbum[album]) {
        titles[name].append(title(QString(song.path).replace(u"@@@@@"_s, u"\\"_s), u"1"_s));
      }
    }
  }
}

void PlainFavourites::drop(const QList<PlainSong> &songs) {
  Titles titles;
  const QStringList names = build(songs, titles);
  QList<Entry> entries = dictionary();
  const int first = nextId;
  nextId += static_cast<int>(names.size());
  for (qsizetype i = 0; i < names.size(); ++i) {
    Entry added;
    added.dictionaryName = colourOf(names[i]);
    added.id = QString::number(first + i);
    added.serial = nextSerial++;
    added.titles = titles.value(added.dictionaryName);
    if (!added.titles.isEmpty()) {
      merge(entries, added, vaultbox() ? -1 : static_cast<int>(kColours.indexOf(added.dictionaryName)));
    }
  }
  QStringList ids;
  for (const Entry &entry : std::as_const(entries)) {
    ids.append(entry.id);
  }
  if (ids.removeDuplicates() > 0) {
    renumber(entries);
  }
  if (!vaultbox()) {
    adaptLimits(names, entries);
  }
  if (entries.isEmpty()) {
    return;
  }
  write(entries);
  if (!vaultbox()) {
    saveCopy(entries);
  }
}

void PlainFavourites::merge(QList<Entry> &entries, const Entry &added, int colour) {
  Entry fresh = added;
  if (colour >= 0) {
    fresh.dictionaryName = entries[colour].dictionaryName;
    fresh.id = entries[colour].id;
    fresh.serial = entries[colour].serial;
  }
  for (Entry &stored : entries) {
    if (stored.dictionaryName != added.dictionaryName) {
      continue;
    }
    if (vaultbox() || !isKeyId(stored.id)) {
      stored = fresh;
      return;
    }
    if (stored.id == fresh.id) {
      mergeIntoKey(stored, fresh, colour);
      return;
    }
  }
  entries.append(fresh);
}

void PlainFavourites::mergeIntoKey(Entry &key, Entry added, int colour) {
  if (limitsFile) {
    m_limits = *limitsFile;
  }
  bool equal = copy.has_value();
  if (equal) {
    const QList<PlainTitle> &saved = (*copy)[colour].titles;
    equal = saved.size() == key.titles.size();
    for (qsizetype i = 0; equal && i < saved.size(); ++i) {
      equal = saved[i].serial == key.titles[i].serial && saved[i].type == key.titles[i].type;
    }
  }
  const PlainLimit &limit = m_limits[static_cast<size_t>(colour)];
  if (added.titles.first().type == u"2" && (limit.limit == 9 || !equal)) {
    QList<PlainTitle> all = key.titles;
    for (const PlainTitle &fresh : std::as_const(added.titles)) {
      bool stands = false;
      for (const PlainTitle &stored : std::as_const(key.titles)) {
        stands = stands || stored.path.compare(afterWriting(fresh.path), Qt::CaseInsensitive) == 0;
      }
      if (!stands) {
        all.append(fresh);
      }
    }
    while (m_product == u"Auralis 5" && limit.enable == 1 && all.size() >= 10) {
      all.removeFirst();
    }
    added.titles = all;
  }
  key = added;
}

void PlainFavourites::adaptLimits(const QStringList &names, const QList<Entry> &entries) {
  if (!limitsFile) {
    return;
  }
  bool anyColour = false;
  for (const QString &name : names) {
    anyColour = anyColour || kColours.contains(colourOf(name));
  }
  if (!anyColour) {
    return;
  }
  for (const QString &name : names) {
    const int colour = static_cast<int>(kColours.indexOf(colourOf(name)));
    if (colour < 0 || entries[colour].titles.isEmpty()) {
      continue;
    }
    PlainLimit &key = (*limitsFile)[static_cast<size_t>(colour)];
    if (key.enable != 1 || key.limit > 99) {
      continue;
    }
    const int count = static_cast<int>(entries[colour].titles.size());
    const QString type = entries[colour].titles.last().type;
    if (type == u"1") {
      key.limit = count == 9 ? 10 : qMin(count, 99);
    } else if (type == u"2") {
      key.limit = 9;
    }
  }
  m_limits = *limitsFile;
}

void PlainFavourites::saveCopy(const QList<Entry> &entries) {
  QList<PlainList> keys;
  for (qsizetype i = 0; i < 4; ++i) {
    PlainList key = entries[i];
    while (m_product != u"Auralis 5" && key.titles.size() >= 100) {
      key.titles.removeFirst();
    }
    keys.append(key);
  }
  copy = keys;
}

} // namespace sonorel::test
