#include "link/ClientMessages.h"

#include "core/state/LogException.h"
#include "link/MessageRecord.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ClientMessages::ClientMessages(FileSystem &files, Desktop &desktop, Strings &strings, View &view,
                               const Session &session, ShareFolders folders)
    : m_files(files), m_desktop(desktop), m_strings(strings), m_view(view), m_session(session),
      m_folders(std::move(folders)) {}

void ClientMessages::generateMetaDataFile(const QString &fileName, const QString &GUID, const QString &command,
                                          const QString &msgKind) {
  const QByteArray record = messageRecord(GUID, command, msgKind);
  try {
    m_files.writeAtomically(m_folders.system() + fileName, record);
  } catch (const Failure &) {
    // The share may have gone: nobody is told, the next look at the connection finds out.
  }
}

QByteArray ClientMessages::generateMetaDataForPL(const QString &GUID, const QString &command,
                                                 const QString &msgKind) {
  return messageRecord(GUID, command, msgKind);
}

void ClientMessages::send(QStringView command) {
  generateMetaDataFile(command.toString() + kServerFileExtension.toString(), m_session.UUID(), command.toString(),
                       kMessageKind.toString());
}

void ClientMessages::sendClientAliveMessage() {
  try {
    m_strings.reload();
    send(kClientAlive);
  } catch (const std::exception &e) {
    logException(m_desktop, u"sendClientAliveMessage"_s, e);
    m_view.alert(u"Sonorel"_s, m_strings.text(u"ErrorUnknown"_s));
  }
}

void ClientMessages::sendMetaDataForTransferredFiles(const TransferredKinds &kinds) {
  try {
    if (kinds.soundFileTransferred) {
      send(kNetMusicFileCollection);
    }
    if (kinds.videoFileTransferred || kinds.photoFileTransferred) {
      send(kPhotoFileCollection);
    }
  } catch (const std::exception &e) {
    logException(m_desktop, u"sendMetaDataForTransferredFiles"_s, e);
  }
}

} // namespace sonorel
