#include "favourites/FavouritesMerge.h"

#include "core/state/LogException.h"
#include "favourites/FavouritesFormat.h"
#include "favourites/Parser.h"
#include "link/TextEncoding.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::chrono::milliseconds kPauseBeforeDelete{1000};
constexpr int kAlbumLimit = 9; // a key with this limit holds albums
constexpr size_t kMostAlbumsOnAuralis5 = 9;
constexpr size_t kMostSavedTitles = 99;

void keepLast(std::vector<FavouriteTitle> &titles, size_t count) {
  if (titles.size() > count) {
    titles.erase(titles.begin(), titles.end() - static_cast<std::ptrdiff_t>(count));
  }
}

// Texts that differ only in case become equal, character by character, as in a comparison without regard to case.
QString withoutCase(const QString &text) {
  const auto characters = text.toUcs4();
  QString folded;
  folded.reserve(text.size());
  for (const char32_t character : characters) {
    folded += QChar::fromUcs4(QChar::toCaseFolded(character));
  }
  return folded;
}

QStringList colourNamesOf(const std::vector<NewList> &newLists) {
  QStringList names;
  for (const NewList &list : newLists) {
    if (colourIndex(list.name) >= 0) {
      names.append(list.name);
    }
  }
  return names;
}

} // namespace

FavouritesMerge::FavouritesMerge(MergeTools tools) : m_tools(tools) {}

bool FavouritesMerge::addPlaylistToDictionary(const std::vector<NewList> &newLists, std::stop_token stop,
                                              MergeTry kind) {
  try {
    FavouritesRewrite::Turn turn = m_tools.rewrite.begin(FavouritesKind::Music, stop);
    for (int attempt = 0; attempt < MainDictionary::kAttempts; ++attempt) {
      const WriteResult result = mergeOnce(turn, newLists, stop, kind);
      if (result != WriteResult::Changed) {
        return result == WriteResult::Written;
      }
    }
    throw Failure(u"the server's favourites are changed by somebody else all the time"_s);
  } catch (const std::exception &exception) {
    logException(m_tools.desktop, u"addPlaylistToDictionary"_s, exception);
    return false;
  }
}

WriteResult FavouritesMerge::mergeOnce(FavouritesRewrite::Turn &turn, const std::vector<NewList> &given,
                                       std::stop_token stop, MergeTry kind) {
  const SeenFile seen = turn.look();
  Parser parser = m_tools.dictionary.parser();
  FavouriteLists lists = m_tools.dictionary.rebuild(parser, seen);
  const std::vector<NewList> newLists = stillToWrite(given, lists, kind);
  if (newLists.empty() && !given.empty()) {
    return WriteResult::Written;
  }
  m_tools.dictionary.repair(lists);
  mergeLists(lists, newLists, takePlaylistIDs(newLists.size()));
  // A drop on a key whose place another client's list has taken is appended with that list's number.
  m_tools.dictionary.renumberDuplicates(lists);
  try {
    m_tools.dictionaryFile.save(lists);
  } catch (const Failure &failure) {
    // It is a record for the next run; the favourites are written from memory.
    m_tools.desktop.log(u"The main dictionary could not be written: "_s + failure.reason());
  }
  const bool hasColourKeys = !playerOf(m_tools.session).isVaultbox1();
  const QStringList colours = colourNamesOf(newLists);
  if (hasColourKeys && !colours.isEmpty()) {
    m_tools.limits.executeLimitOperatingLogic(colours, lists);
  }
  if (lists.empty()) {
    return WriteResult::Written;
  }
  // A stop does not leave the merge half done: it only shortens the pause.
  m_tools.clock.sleep(kPauseBeforeDelete, stop);
  const WriteResult result = parser.makeOrvFileForGivenDictionary(turn, seen, lists);
  if (result == WriteResult::Written && hasColourKeys) {
    saveColourKeys(lists);
  }
  return result;
}

qint64 FavouritesMerge::takePlaylistIDs(size_t count) {
  const qint64 first = m_tools.settings.text(u"PlaylistID"_s).toLongLong();
  m_tools.settings.set(u"PlaylistID"_s, QString::number(first + static_cast<qint64>(count)));
  try {
    m_tools.settings.save();
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"The settings could not be written: "_s + failure.reason());
  }
  return first;
}

void FavouritesMerge::mergeLists(FavouriteLists &lists, const std::vector<NewList> &newLists, qint64 firstId) {
  const bool isVaultbox1 = playerOf(m_tools.session).isVaultbox1();
  QHash<QString, QList<size_t>> byName;
  for (size_t i = 0; i < lists.size(); ++i) {
    byName[lists[i].playlistName].append(i);
  }
  for (size_t i = 0; i < newLists.size(); ++i) {
    const NewList &added = newLists[i];
    if (added.titles.empty()) {
      continue;
    }
    FavouriteList fresh;
    fresh.playlistName = added.name;
    fresh.playlistId = QString::number(firstId + static_cast<qint64>(i));
    fresh.locationId = added.locationId;
    fresh.guid = added.guid;
    fresh.songs = added.titles;
    const int colour = isVaultbox1 ? -1 : colourIndex(added.name);
    if (colour >= 0) {
      const FavouriteList &key = lists.at(static_cast<size_t>(colour));
      fresh.playlistName = key.playlistName;
      fresh.playlistId = key.playlistId;
      fresh.guid = key.guid;
    }
    const auto place = [&]() -> std::optional<size_t> {
      for (const size_t index : byName.value(added.name)) {
        const FavouriteList &stored = lists[index];
        if (isVaultbox1 || !isColourKeyId(stored.playlistId) || stored.playlistId == fresh.playlistId) {
          return index;
        }
      }
      return std::nullopt;
    }();
    if (!place) {
      byName[fresh.playlistName].append(lists.size());
      lists.push_back(std::move(fresh));
    } else if (isVaultbox1 || !isColourKeyId(lists[*place].playlistId)) {
      lists[*place] = std::move(fresh);
    } else {
      mergeIntoColourKey(lists[*place], colour, std::move(fresh));
    }
  }
}

void FavouritesMerge::mergeIntoColourKey(FavouriteList &key, int index, FavouriteList &&fresh) {
  m_tools.limits.presentLimitSettings();
  const KeyLimit limit = m_tools.limits.values()[static_cast<size_t>(index)];
  const auto type = fresh.songs.front().itemType;
  if (type == kItemTypeAlbum.toString()) {
    if (limit.limit == kAlbumLimit || !equalsSavedKey(key, index)) {
      fresh.songs = appended(key, fresh, limit);
    }
  } else if (type != kItemTypeTitle.toString()) {
    return; // a kind that this client does not know: the key stays as it is
  }
  key = std::move(fresh);
}

std::vector<FavouriteTitle> FavouritesMerge::appended(const FavouriteList &key, const FavouriteList &fresh,
                                                      const KeyLimit &limit) const {
  const PlayerTraits player = playerOf(m_tools.session);
  QSet<QString> stored;
  for (const FavouriteTitle &title : key.songs) {
    stored.insert(withoutCase(title.songPath));
  }
  std::vector<FavouriteTitle> titles = key.songs;
  for (const FavouriteTitle &title : fresh.songs) {
    // As the server will give it back.
    const QString readBack = decodeText(encodeText(title.songPath, player.utf8), player.utf8);
    if (!stored.contains(withoutCase(readBack))) {
      titles.push_back(title);
    }
  }
  if (player.isAuralis5() && limit.enable == 1) {
    keepLast(titles, kMostAlbumsOnAuralis5);
  }
  return titles;
}

bool FavouritesMerge::equalsSavedKey(const FavouriteList &key, int index) const {
  try {
    const QString path = kColourCopyPath.toString();
    if (m_tools.files.presence(path) != Presence::Present) {
      return false;
    }
    const FavouriteLists saved = listsOfDictionary(m_tools.propertyLists.decode(m_tools.files.read(path)).toMap());
    if (static_cast<size_t>(index) >= saved.size()) {
      throw Failure(u"it does not hold all four keys"_s, FailureKind::Damaged);
    }
    return compareSavedDictionary(saved[static_cast<size_t>(index)], key);
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"The copy of the colour lists cannot be read: "_s + failure.reason());
    return false;
  }
}

void FavouritesMerge::saveColourKeys(const FavouriteLists &lists) {
  FavouriteLists keys(lists.begin(), lists.begin() + qMin<std::ptrdiff_t>(kColourKeys, std::ssize(lists)));
  if (!playerOf(m_tools.session).isAuralis5()) {
    for (FavouriteList &key : keys) {
      keepLast(key.songs, kMostSavedTitles);
    }
  }
  try {
    m_tools.files.write(kColourCopyPath.toString(), m_tools.propertyLists.encodeXml(dictionaryOf(keys)));
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"The copy of the colour lists could not be written: "_s + failure.reason());
  }
}

} // namespace sonorel
