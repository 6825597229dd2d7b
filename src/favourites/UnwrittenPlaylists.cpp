#include "favourites/UnwrittenPlaylists.h"

#include "favourites/FavouritesBackup.h"
#include "favourites/MainDictionaryFile.h"
#include "platform/Failure.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr int kHighestNumber = 1'000'000'000;

QVariantMap dictionaryOfTransfer(const std::vector<NewList> &lists) {
  FavouriteLists entries;
  entries.reserve(lists.size());
  for (const NewList &list : lists) {
    entries.push_back({list.name, list.playlistId, list.locationId, list.guid, list.titles, std::nullopt});
  }
  return dictionaryOf(entries);
}

std::vector<NewList> transferOfDictionary(const QVariant &value) {
  std::vector<NewList> lists;
  for (FavouriteList &entry : listsOfDictionary(value.toMap())) {
    if (entry.guid.size() != kGuidSize) {
      throw Failure(u"a list without a GUID"_s, FailureKind::Damaged); // by which a later try knows it
    }
    lists.push_back({entry.playlistName, entry.playlistId, entry.locationId, entry.guid, std::move(entry.songs)});
  }
  if (lists.empty()) {
    throw Failure(u"there are no lists inside"_s, FailureKind::Damaged);
  }
  return lists;
}

} // namespace

UnwrittenPlaylists::UnwrittenPlaylists(UnwrittenTools tools, FavouritesKind kind)
    : m_tools(std::move(tools)), m_namePrefix(favouritesFileName(kind) + u".unwritten-"_s) {}

void UnwrittenPlaylists::keep(const QString &product, std::vector<NewList> lists) {
  Kept &kept = keptFor(product);
  kept.transfers.push_back({++kept.lastNumber, kept.isRead, std::move(lists)});
  if (kept.isRead) {
    write(product, kept.transfers.back());
  }
}

void UnwrittenPlaylists::forgetLatest(const QString &product) {
  Kept &kept = keptFor(product);
  remove(product, kept.transfers.back());
  kept.transfers.pop_back();
}

bool UnwrittenPlaylists::hasAny(const QString &product) {
  return !keptFor(product).transfers.empty();
}

bool UnwrittenPlaylists::retry(const QString &product,
                               const std::function<bool(const std::vector<NewList> &)> &write) {
  Kept &kept = keptFor(product);
  while (!kept.transfers.empty()) {
    if (!write(kept.transfers.front().lists)) {
      return false;
    }
    remove(product, kept.transfers.front());
    kept.transfers.pop_front();
  }
  return true;
}

UnwrittenPlaylists::Kept &UnwrittenPlaylists::keptFor(const QString &product) {
  Kept &kept = m_products[product];
  if (!kept.isRead && kept.transfers.empty()) {
    read(product, kept);
  }
  return kept;
}

void UnwrittenPlaylists::read(const QString &product, Kept &kept) {
  const QString folder = m_tools.backupFolder + u'/' + product;
  std::map<int, QString> found; // by number
  try {
    for (const QString &name : m_tools.files.list(folder)) {
      bool isNumber = false;
      const int number = name.startsWith(m_namePrefix) ? name.mid(m_namePrefix.size()).toInt(&isNumber) : 0;
      if (isNumber && number > 0 && number < kHighestNumber) {
        found.emplace(number, folder + u'/' + name);
      }
    }
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      m_tools.desktop.log(u"The lists that wait to be written cannot be read: "_s + failure.reason());
      return;
    }
  }
  for (const auto &[number, path] : found) {
    kept.lastNumber = number;
    if (std::vector<NewList> lists = readTransfer(path); !lists.empty()) {
      kept.transfers.push_back({number, true, std::move(lists)});
    }
  }
  kept.isRead = true;
}

// Empty when the file cannot be used.
std::vector<NewList> UnwrittenPlaylists::readTransfer(const QString &path) {
  try {
    return transferOfDictionary(m_tools.propertyLists.decode(m_tools.files.read(path)));
  } catch (const Failure &failure) {
    QString line = u"Lists that wait to be written cannot be read from %1: %2"_s.arg(path, failure.reason());
    if (failure.kind() == FailureKind::Damaged) {
      try {
        line += u"; the file is kept as "_s + m_tools.files.setAside(path);
      } catch (const Failure &again) {
        line += u"; "_s + again.reason();
      }
    }
    m_tools.desktop.log(line);
    return {};
  }
}

void UnwrittenPlaylists::write(const QString &product, const Transfer &transfer) {
  const QString path = pathOf(product, transfer.number);
  const QString folder = path.left(path.lastIndexOf(u'/'));
  try {
    makePrivateFolders(m_tools.files, folder);
    m_tools.files.writeAtomically(path, m_tools.propertyLists.encodeXml(dictionaryOfTransfer(transfer.lists)));
    m_tools.files.sync(path);
    m_tools.files.sync(folder);
  } catch (const Failure &failure) {
    m_tools.desktop.log(u"Lists could not be kept on the disk until they are written: "_s + failure.reason());
  }
}

void UnwrittenPlaylists::remove(const QString &product, const Transfer &transfer) {
  if (!transfer.hasFile) {
    return;
  }
  try {
    m_tools.files.removeFile(pathOf(product, transfer.number));
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      // A later try knows the lists by their GUIDs.
      m_tools.desktop.log(u"Lists that were written are still kept: "_s + failure.reason());
    }
  }
}

QString UnwrittenPlaylists::pathOf(const QString &product, int number) const {
  return m_tools.backupFolder + u'/' + product + u'/' + m_namePrefix + QString::number(number);
}

} // namespace sonorel
