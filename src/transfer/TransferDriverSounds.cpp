// The driver's branch for sound files.
#include "core/state/DockImages.h"
#include "core/state/PathNames.h"
#include "transfer/TrackNames.h"
#include "transfer/TransferDriver.h"

#include <QScopeGuard>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint64 kSmallestSound = 0x1FFFF; // a sound file must be larger
constexpr quint64 kSmallestWav = 0x4FFFFF;
constexpr int kArtworkBeside = 2;

} // namespace

TransferDriver::After TransferDriver::carrySound(const Item &item) {
  const auto clearFlag = qScopeGuard([this] { m_transfer.setSoundFileType(false); });
  try {
    return whenItFits(item, &TransferDriver::copySound);
  } catch (const std::exception &exception) {
    return exceptionInBranch(exception);
  }
}

TransferDriver::After TransferDriver::copySound(const Item &item) {
  const auto facts = sourceFacts(item.path, Links::Follow);
  if (!facts) {
    m_messages.reportMissing(item.path);
    return After::NextItem;
  }
  if (isToldTooSmall(item, facts->size)) {
    return After::NextItem;
  }
  const QString changedSongName = nameTrack(item);
  const int artworkMode = m_session.deviceName() == kVaultbox1 ? 0 : kArtworkBeside;
  if (m_transfer.transferSoundFile(item.path, changedSongName, artworkMode, item.hierarchyFlag)) {
    m_transferred.soundFileTransferred = true;
    m_showTransferCompleteMessage = true;
    return After::NextItem;
  }
  if (m_tools.board.manualSleepWasConnected) {
    return After::Slept; // the copy was ended, and this item is the first of the list after the wake
  }
  if (!isShareThere() && !m_tools.board.isCancel) {
    return shareLost(kConnectImage);
  }
  if (m_transfer.settledOnIdenticalFile() || isAlreadyOnTheServer(item)) {
    m_showTransferCompleteMessage = true;
    return After::NextItem;
  }
  m_messages.reportFailedCopy(item.name);
  return After::NextItem;
}

bool TransferDriver::isToldTooSmall(const Item &item, quint64 size) {
  const bool isWav = item.extension == u"wav";
  if (size > (isWav ? kSmallestWav : kSmallestSound)) {
    return false;
  }
  m_messages.showInFront(m_messages.text(isWav ? u"Message7"_s : u"Message15"_s, item.name));
  return true;
}

// The name by the tags, which the board shows until the track stands on the share.
QString TransferDriver::nameTrack(const Item &item) {
  const auto tags = m_tools.metadata.tags(item.path);
  if (!tags) {
    m_tools.desktop.log(item.path + u"... File has no metadata!"_s);
  }
  m_tools.board.setCurrentTrack(tags ? trackTexts(*tags) : TrackTexts());
  QString changedSongName = changeSongFileName(item.path, tags);
  m_tools.board.updateRecords(false, item.path, [&changedSongName](PlaylistInfo &record) {
    if (record.songTransferFlag != u"Y") {
      record.destinationSongName = changedSongName;
    }
  });
  return changedSongName;
}

bool TransferDriver::isAlreadyOnTheServer(const Item &item) {
  for (const QString &candidate : serverCandidates(item)) {
    if (m_transfer.isFileAlreadyExistsOnVaultbox1(item.path, candidate)) {
      return true;
    }
  }
  return false;
}

QStringList TransferDriver::serverCandidates(const Item &item) {
  const auto tags = m_tools.metadata.tags(item.path);
  const QString base = m_folders.music();
  const QString hierarchy = hierarchyFolder(item.path, item.hierarchyFlag == 1);
  const QString newName = cleanedName(changeSongFileName(item.path, tags));
  const QString olderName = cleanedName(changeSongFileNameOlderWay(item.path, tags));
  const QString parenthesised = withExtension(u'(' + nameWithoutExtension(item.path) + u')', item.extension);
  const QString shortened = shortenedRelativeName(hierarchy + newName);
  const QString folder = shortened.left(shortened.lastIndexOf(u'/') + 1);
  return {base + shortened,
          base + folder + item.name,
          base + withinNameLimit(folder + parenthesised),
          base + newName,
          base + item.name,
          base + withinNameLimit(parenthesised),
          base + olderName,
          base + shortenedRelativeName(hierarchy + olderName)};
}

} // namespace sonorel
