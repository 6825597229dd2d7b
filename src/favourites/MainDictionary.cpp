#include "favourites/MainDictionary.h"

#include "core/state/LogException.h"
#include "platform/Failure.h"

#include <QSet>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qint64 kHighestId = 2'147'483'646; // the next one still fits a signed 32-bit number

} // namespace

qint64 leadingNumber(const QString &text) {
  qint64 number = 0;
  for (const QChar digit : text) {
    if (digit < u'0' || digit > u'9' || number > kHighestId) {
      break;
    }
    number = number * 10 + (digit.unicode() - u'0');
  }
  return number;
}

PlayerTraits playerOf(const Session &session) {
  return {session.deviceName(), session.isAU5UTF8Compliant() == u"YES"_s};
}

qint64 highestPlaylistId(const FavouriteLists &lists, Desktop &desktop) {
  qint64 highest = 0;
  for (const FavouriteList &list : lists) {
    const qint64 number = leadingNumber(list.playlistId);
    if (number > kHighestId) {
      desktop.log(u"The PlaylistID \"%1\" is too high to count on from."_s.arg(list.playlistId));
    } else {
      highest = qMax(highest, number);
    }
  }
  return highest;
}

bool compareSavedDictionary(const FavouriteList &saved, const FavouriteList &main) {
  return std::equal(
      saved.songs.begin(), saved.songs.end(), main.songs.begin(), main.songs.end(),
      [](const FavouriteTitle &a, const FavouriteTitle &b) { return a.itemType == b.itemType && a.guid == b.guid; });
}

MainDictionary::MainDictionary(DictionaryTools tools, FavouritesRewrite &rewrite, MainDictionaryFile &file)
    : m_tools(tools), m_rewrite(rewrite), m_file(file) {}

Parser MainDictionary::parser() {
  return {{m_tools.desktop, m_tools.identifiers, m_file}, playerOf(m_tools.session)};
}

FavouriteLists MainDictionary::createMainDictionary() {
  FavouriteLists lists;
  if (!playerOf(m_tools.session).isVaultbox1()) {
    createCFLEntriesIfMissing(lists, colourGuids(m_tools.settings, m_tools.identifiers, m_tools.desktop));
  }
  save(lists);
  return lists;
}

FavouriteLists MainDictionary::rebuild(Parser &parser, const SeenFile &seen) {
  return parser.getAlreadyExistingPlaylistsFromAC5(seen) != -1 ? parser.readList2FromAC5() : createMainDictionary();
}

void MainDictionary::repair(FavouriteLists &lists) {
  bool changed = false;
  if (!playerOf(m_tools.session).isVaultbox1()) {
    const ColourGuids guids = colourGuids(m_tools.settings, m_tools.identifiers, m_tools.desktop);
    changed = createCFLEntriesIfMissing(lists, guids) || moveColourKeysToFront(lists);
  }
  updatePlaylistID(lists);
  if (renumberDuplicates(lists) || changed) {
    save(lists);
  }
}

void MainDictionary::updatePlaylistID(const FavouriteLists &lists) {
  storeNextId(highestPlaylistId(lists, m_tools.desktop) + 1);
}

bool MainDictionary::renumberDuplicates(FavouriteLists &lists) {
  QSet<QString> collected;
  qint64 next = 0; // looked up at the first duplicate
  for (FavouriteList &list : lists) {
    if (collected.contains(list.playlistId)) {
      next = next > 0 ? next : highestPlaylistId(lists, m_tools.desktop) + 1;
      list.playlistId = QString::number(next++);
    }
    collected.insert(list.playlistId);
  }
  if (next > 0) {
    storeNextId(next);
  }
  return next > 0;
}

bool MainDictionary::validateOrvFile(std::stop_token stop) {
  try {
    FavouritesRewrite::Turn turn = m_rewrite.begin(FavouritesKind::Music, stop);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      const WriteResult result = validateOnce(turn);
      if (result != WriteResult::Changed) {
        return result == WriteResult::Written;
      }
    }
    throw Failure(u"the server's favourites are changed by somebody else all the time"_s);
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"validateOrvFile"_s, e);
    return false;
  }
}

WriteResult MainDictionary::validateOnce(FavouritesRewrite::Turn &turn) {
  const SeenFile seen = turn.look();
  Parser reader = parser();
  FavouriteLists lists = rebuild(reader, seen);
  repair(lists);
  return reader.makeOrvFileForGivenDictionary(turn, seen, lists);
}

// What the dictionary's file and the property file hold is a record for the next run; favourites are written anyway.
void MainDictionary::save(const FavouriteLists &lists) {
  try {
    m_file.save(lists);
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"saveMainDictionary"_s, e);
  }
}

void MainDictionary::storeNextId(qint64 next) {
  try {
    m_tools.settings.setAndSave(u"PlaylistID"_s, QString::number(next));
  } catch (const std::exception &e) {
    logException(m_tools.desktop, u"updatePlaylistID"_s, e);
  }
}

} // namespace sonorel
